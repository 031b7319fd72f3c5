#include "quilt/message_target.h"

#include <algorithm>

namespace quilt {

namespace {

const MessageMapEntry rootEntries[] = {EndOfMap};

const MessageMapEntry* FindCommandRow(const MessageMap& map, int32_t id) {
    for (const MessageMapEntry* row = map.entries; row->kind != 0; ++row) {
        if (row->kind == MsgCommand && row->first <= id && id <= row->last) {
            return row;
        }
    }
    return nullptr;
}

// An exact row is taken at once; otherwise the last catch-all of the table.
const MessageMapEntry* FindNotificationRow(const MessageMap& map, int32_t kind, int32_t subKind,
                                           int32_t id) {
    const MessageMapEntry* catchAll = nullptr;
    for (const MessageMapEntry* row = map.entries; row->kind != 0; ++row) {
        if (row->kind != kind || row->first != subKind) {
            continue;
        }
        if (row->idFirst <= id && id <= row->idLast) {
            return row;
        }
        if (row->idFirst == AnyControl && row->idLast == AnyControl) {
            catchAll = row;
        }
    }
    return catchAll;
}

} // namespace

const MessageMap MessageTarget::messageMap{nullptr, rootEntries};

bool MessageTarget::OnCommand(int32_t id) {
    for (size_t i = 0; i < targets.size(); ++i) {
        if (targets[i]->OnCommand(id)) {
            return true;
        }
    }
    for (const MessageMap* map = GetMessageMap(); map != nullptr; map = map->base) {
        const MessageMapEntry* row = FindCommandRow(*map, id);
        if (row != nullptr && InvokeCommand(id, *row)) {
            return true;
        }
    }
    return false;
}

bool MessageTarget::InvokeCommand(int32_t id, const MessageMapEntry& entry) {
    if (entry.signature == SignatureNoArgument) {
        return (this->*entry.handler.none)();
    }
    if (entry.signature == SignatureOneArgument) {
        return (this->*entry.handler.one)(id);
    }
    return false;
}

bool MessageTarget::Dispatch(int32_t kind, int32_t subKind, int32_t id, const int32_t* parameter) {
    for (size_t i = 0; i < targets.size(); ++i) {
        if (targets[i]->Dispatch(kind, subKind, id, parameter)) {
            return true;
        }
    }
    return DispatchFromMap(GetMessageMap(), kind, subKind, id, parameter);
}

bool MessageTarget::DispatchFromMap(const MessageMap* map, int32_t kind, int32_t subKind,
                                    int32_t id, const int32_t* parameter) {
    for (; map != nullptr; map = map->base) {
        const MessageMapEntry* row = FindNotificationRow(*map, kind, subKind, id);
        if (row != nullptr && CallNotificationHandler(*row, kind, subKind, id, parameter)) {
            return true;
        }
    }
    return false;
}

bool MessageTarget::HasHandler(int32_t kind, int32_t subKind, int32_t id,
                               const MessageMapEntry** entry) const {
    for (const MessageMap* map = GetMessageMap(); map != nullptr; map = map->base) {
        const MessageMapEntry* row = FindNotificationRow(*map, kind, subKind, id);
        if (row != nullptr) {
            *entry = row;
            return true;
        }
    }
    return false;
}

bool MessageTarget::CallNotificationHandler(const MessageMapEntry& row, int32_t kind,
                                            int32_t subKind, int32_t id, const int32_t* parameter) {
    if (row.signature == SignatureNoArgument) {
        return (this->*row.handler.none)();
    }
    if (row.signature == SignatureOneArgument) {
        return (this->*row.handler.one)(parameter != nullptr ? *parameter : 0);
    }
    if (row.signature == SignatureThreeArguments) {
        return (this->*row.handler.three)(kind, subKind, id);
    }
    return false;
}

void MessageTarget::AddTarget(MessageTarget* target) {
    targets.push_back(target);
}

void MessageTarget::RemoveTarget(MessageTarget* target) {
    targets.erase(std::remove(targets.begin(), targets.end(), target), targets.end());
}

} // namespace quilt
