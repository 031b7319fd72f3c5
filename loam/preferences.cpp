#include "loam/preferences.h"

namespace loam {

namespace {

using InsertOperation = void (TreeNode::*)(TreeNode*);

// By the `where` of Insert; entry 0 and anything out of range insert nothing.
constexpr InsertOperation insertOperations[] = {
    nullptr,
    &TreeNode::InsertBefore,
    &TreeNode::InsertAfter,
    &TreeNode::InsertFirstChild,
    &TreeNode::AddToParent,
};

String& Company() {
    static String company;
    return company;
}

String& Product() {
    static String product;
    return product;
}

} // namespace

void TreeNode::InsertAfter(TreeNode* other) {
    if (!other)
        return;
    parent = other->parent;
    previous = other;
    next = other->next;
    if (next)
        next->previous = this;
    other->next = this;
}

void TreeNode::InsertBefore(TreeNode* other) {
    if (!other)
        return;
    parent = other->parent;
    next = other;
    previous = other->previous;
    if (previous)
        previous->next = this;
    else if (parent && parent->firstChild == other)
        parent->firstChild = this;
    other->previous = this;
}

void TreeNode::InsertAtEnd(TreeNode* other) {
    if (other)
        InsertAfter(other->GetLastSibling());
}

void TreeNode::InsertFirstChild(TreeNode* other) {
    if (!other)
        return;
    parent = other;
    previous = nullptr;
    next = other->firstChild;
    if (next)
        next->previous = this;
    other->firstChild = this;
}

void TreeNode::AddToParent(TreeNode* other) {
    if (!other)
        return;
    if (TreeNode* last = other->GetLastChild())
        InsertAfter(last);
    else
        InsertFirstChild(other);
}

void TreeNode::Insert(TreeNode* other, int where) {
    constexpr int count = sizeof(insertOperations) / sizeof(insertOperations[0]);
    if (where < 1 || where >= count)
        return;
    (this->*insertOperations[where])(other);
}

TreeNode* TreeNode::Unlink() {
    if (previous)
        previous->next = next;
    else if (parent && parent->firstChild == this)
        parent->firstChild = next;
    if (next)
        next->previous = previous;
    parent = nullptr;
    next = nullptr;
    previous = nullptr;
    return this;
}

void TreeNode::DeleteTree() {
    Unlink();
    while (firstChild)
        firstChild->DeleteTree();
    delete this;
}

// The other node takes this node's place in the tree, children and all.
void TreeNode::MoveLinksTo(TreeNode* other) {
    if (!other || other == this)
        return;
    other->parent = parent;
    other->next = next;
    other->previous = previous;
    other->firstChild = firstChild;
    if (previous)
        previous->next = other;
    else if (parent && parent->firstChild == this)
        parent->firstChild = other;
    if (next)
        next->previous = other;
    for (TreeNode* child = firstChild; child; child = child->next)
        child->parent = other;
    parent = nullptr;
    next = nullptr;
    previous = nullptr;
    firstChild = nullptr;
}

TreeNode* TreeNode::GetLastSibling() {
    TreeNode* last = this;
    while (last->next)
        last = last->next;
    return last;
}

TreeNode* TreeNode::GetLastChild() const {
    return firstChild ? firstChild->GetLastSibling() : nullptr;
}

Preferences::Preferences(const char* name, Preferences* parent)
    : imp(CreatePreferencesImp()), name(name) {
    if (parent)
        AddToParent(parent);
    imp->SetNode(this);
}

Preferences::~Preferences() {
    while (TreeNode* child = GetFirstChild())
        child->DeleteTree();
    delete imp;
}

bool Preferences::GetInt(const char* dottedName, uint32_t& value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->GetInt(leaf, value);
}

bool Preferences::GetBool(const char* dottedName, bool& value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->GetBool(leaf, value);
}

bool Preferences::GetString(const char* dottedName, String& value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->GetString(leaf, value);
}

bool Preferences::GetFileSpec(const char* dottedName, FileSpec& value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->GetFileSpec(leaf, value);
}

bool Preferences::SetInt(const char* dottedName, uint32_t value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->SetInt(leaf, value);
}

bool Preferences::SetBool(const char* dottedName, bool value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->SetBool(leaf, value);
}

bool Preferences::SetString(const char* dottedName, const String& value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->SetString(leaf, value);
}

bool Preferences::SetFileSpec(const char* dottedName, const FileSpec& value) {
    String leaf;
    return ResolveName(dottedName, leaf)->imp->SetFileSpec(leaf, value);
}

Preferences* Preferences::GetChild(const char* path) {
    const String text(path);
    String head = text;
    String rest;
    int32_t dot = 0;
    if (text.FindChar('.', &dot)) {
        head = text.Left(dot);
        rest = text.Mid(dot + 1);
    }
    Preferences* child = nullptr;
    for (TreeNode* node = GetFirstChild(); node && !child; node = node->GetNext()) {
        auto* candidate = static_cast<Preferences*>(node);
        if (candidate->name.EqualsNoCase(head))
            child = candidate;
    }
    if (!child)
        child = new Preferences(head.GetCString(), this);
    return rest.IsEmpty() ? child : child->GetChild(rest.GetCString());
}

Preferences* Preferences::ResolveName(const char* dottedName, String& leaf) {
    const String text(dottedName);
    int32_t dot = 0;
    if (!text.FindLastChar('.', &dot)) {
        leaf = text;
        return this;
    }
    leaf = text.Mid(dot + 1);
    return GetChild(text.Left(dot).GetCString());
}

void SetPreferenceLocation(const char* company, const char* product) {
    Company() = company ? company : "";
    Product() = product ? product : "";
}

bool HasPreferenceLocation() {
    return !Product().IsEmpty();
}

const String& GetPreferenceCompany() {
    return Company();
}

const String& GetPreferenceProduct() {
    return Product();
}

Preferences& GetPreferences() {
    static Preferences root("", nullptr);
    return root;
}

} // namespace loam
