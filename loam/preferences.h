#pragma once

#include "loam/file_spec.h"
#include "loam/string.h"

#include <cstdint>

namespace loam {

// A node of a generic tree of siblings and children.
class TreeNode {
public:
    enum InsertWhere {
        InsertBeforeSibling = 1,
        InsertAfterSibling = 2,
        AsFirstChild = 3,
        AsLastChild = 4
    };

    TreeNode() = default;
    TreeNode(const TreeNode&) = delete;
    TreeNode& operator=(const TreeNode&) = delete;
    virtual ~TreeNode() = default;

    virtual void InsertAfter(TreeNode* other);
    virtual void InsertBefore(TreeNode* other);
    virtual void InsertAtEnd(TreeNode* other);
    virtual void InsertFirstChild(TreeNode* other);
    virtual void AddToParent(TreeNode* other);
    virtual void Insert(TreeNode* other, int where);
    virtual TreeNode* Unlink();
    virtual void DeleteTree();
    virtual void MoveLinksTo(TreeNode* other);

    TreeNode* GetParent() const { return parent; }
    TreeNode* GetNext() const { return next; }
    TreeNode* GetPrevious() const { return previous; }
    TreeNode* GetFirstChild() const { return firstChild; }
    TreeNode* GetLastSibling();
    TreeNode* GetLastChild() const;

private:
    TreeNode* parent = nullptr;
    TreeNode* next = nullptr;
    TreeNode* previous = nullptr;
    TreeNode* firstChild = nullptr;
};

class Preferences;

// The store side of one preference node. Values are named by their leaf name.
class PreferencesImp {
public:
    virtual ~PreferencesImp() = default;
    virtual bool GetFileSpec(const String& name, FileSpec& value) = 0;
    virtual bool GetBool(const String& name, bool& value) = 0;
    virtual bool GetInt(const String& name, uint32_t& value) = 0;
    virtual bool GetString(const String& name, String& value) = 0;
    virtual bool SetFileSpec(const String& name, const FileSpec& value) = 0;
    virtual bool SetBool(const String& name, bool value) = 0;
    virtual bool SetInt(const String& name, uint32_t value) = 0;
    virtual bool SetString(const String& name, const String& value) = 0;
    virtual bool RemoveAll() = 0;

    void SetNode(Preferences* owner) { node = owner; }
    Preferences* GetNode() const { return node; }

private:
    Preferences* node = nullptr;
};

// The one factory of store sides; nothing else names the platform's class.
PreferencesImp* CreatePreferencesImp();

// The user's settings as a tree of nodes; a value is addressed by a dotted name
// ("Options.AutoWildcards"). The tree holds no values: each read and write goes to the store.
// Names of nodes and values match without regard to case.
class Preferences : public TreeNode {
public:
    Preferences(const char* name, Preferences* parent);
    ~Preferences() override;

    const String& GetName() const { return name; }
    PreferencesImp* GetImp() const { return imp; }

    bool GetInt(const char* dottedName, uint32_t& value);
    bool GetBool(const char* dottedName, bool& value);
    bool GetString(const char* dottedName, String& value);
    bool GetFileSpec(const char* dottedName, FileSpec& value);
    bool SetInt(const char* dottedName, uint32_t value);
    bool SetBool(const char* dottedName, bool value);
    bool SetString(const char* dottedName, const String& value);
    bool SetFileSpec(const char* dottedName, const FileSpec& value);

    Preferences* GetChild(const char* path);

private:
    Preferences* ResolveName(const char* dottedName, String& leaf);

    PreferencesImp* imp;
    String name;
};

void SetPreferenceLocation(const char* company, const char* product);
bool HasPreferenceLocation();
const String& GetPreferenceCompany();
const String& GetPreferenceProduct();
Preferences& GetPreferences();

} // namespace loam
