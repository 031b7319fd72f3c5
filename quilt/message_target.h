#pragma once

#include <cstdint>
#include <vector>

namespace quilt {

// The toolkit's notification vocabulary. 0, 2 and 24 are not used; the sub kind of every
// notification that the toolkit raises is 0.
enum NotificationKind : int32_t {
    MsgCommand = 1, // marks a command row of a map; never dispatched
    MsgClicked = 3,
    MsgTextUpdate = 4,
    MsgTextChange = 5,
    MsgEnterKey = 6,
    MsgFocusLost = 7,
    MsgFocusGained = 8,
    MsgSelectionChange = 9,
    MsgItemActivate = 10,
    MsgItemCheckChange = 11,
    MsgListSelChange = 12,
    MsgListSelEndOk = 13,
    MsgListTextChange = 14,
    MsgSliderBottom = 15,
    MsgSliderTop = 16,
    MsgSliderTrack = 17,
    MsgSliderEndTrack = 18,
    MsgSliderLineDown = 19,
    MsgSliderLineUp = 20,
    MsgSliderPageDown = 21,
    MsgSliderPageUp = 22,
    MsgSliderThumbPosition = 23,
    MsgTabChange = 25,
    // A control asks for its context menu, by the mouse or the keyboard; the word is PackPoint
    // of where the menu goes, in the control's client coordinates.
    MsgContextMenu = 26,
};

// How a row's handler is called.
enum HandlerSignature : int32_t {
    SignatureNoArgument = 2,
    // A command row passes the command id; a notification row the word that the parameter
    // points to, or 0 without one.
    SignatureOneArgument = 3,
    // Notification rows only: kind, sub kind, control id.
    SignatureThreeArguments = 4,
};

// Control ids of a catch-all row: it takes any id of its kind and sub kind.
constexpr int32_t AnyControl = -1;

class MessageTarget;

using HandlerNoArgument = bool (MessageTarget::*)();
using HandlerOneArgument = bool (MessageTarget::*)(int32_t);
using HandlerThreeArguments = bool (MessageTarget::*)(int32_t, int32_t, int32_t);

// The member function of a row; `signature` says which of these is set.
union MessageHandler {
    HandlerNoArgument none;
    HandlerOneArgument one;
    HandlerThreeArguments three;
};

// One row of a class's table. A table ends at the first row whose kind is 0.
struct MessageMapEntry {
    int32_t kind = 0;
    int32_t first = 0; // command rows: first command id; notification rows: the sub kind
    int32_t last = 0;  // command rows: last command id
    int32_t idFirst = 0;
    int32_t idLast = 0;
    MessageHandler handler{};
    int32_t signature = 0;
};

// A class's table, chained to its base class's map.
struct MessageMap {
    const MessageMap* base;
    const MessageMapEntry* entries;
};

constexpr MessageMapEntry EndOfMap{};

// Row builders: the handler's type picks the signature, so a row cannot call a handler with
// arguments it does not take.
template <class T>
constexpr MessageMapEntry CommandRange(int32_t first, int32_t last, bool (T::*h)()) {
    MessageMapEntry row{MsgCommand, first, last, 0, 0, {}, SignatureNoArgument};
    row.handler.none = static_cast<HandlerNoArgument>(h);
    return row;
}

template <class T>
constexpr MessageMapEntry CommandRange(int32_t first, int32_t last, bool (T::*h)(int32_t)) {
    MessageMapEntry row{MsgCommand, first, last, 0, 0, {}, SignatureOneArgument};
    row.handler.one = static_cast<HandlerOneArgument>(h);
    return row;
}

template <class Handler> constexpr MessageMapEntry Command(int32_t id, Handler h) {
    return CommandRange(id, id, h);
}

template <class T>
constexpr MessageMapEntry NotificationRange(int32_t kind, int32_t idFirst, int32_t idLast,
                                            bool (T::*h)()) {
    MessageMapEntry row{kind, 0, 0, idFirst, idLast, {}, SignatureNoArgument};
    row.handler.none = static_cast<HandlerNoArgument>(h);
    return row;
}

template <class T>
constexpr MessageMapEntry NotificationRange(int32_t kind, int32_t idFirst, int32_t idLast,
                                            bool (T::*h)(int32_t)) {
    MessageMapEntry row{kind, 0, 0, idFirst, idLast, {}, SignatureOneArgument};
    row.handler.one = static_cast<HandlerOneArgument>(h);
    return row;
}

template <class T>
constexpr MessageMapEntry NotificationRange(int32_t kind, int32_t idFirst, int32_t idLast,
                                            bool (T::*h)(int32_t, int32_t, int32_t)) {
    MessageMapEntry row{kind, 0, 0, idFirst, idLast, {}, SignatureThreeArguments};
    row.handler.three = static_cast<HandlerThreeArguments>(h);
    return row;
}

template <class Handler>
constexpr MessageMapEntry Notification(int32_t kind, int32_t id, Handler h) {
    return NotificationRange(kind, id, id, h);
}

// Everything that can be told that something happened. What a class reacts to is a static
// MessageMap, chained to its base's, not a switch:
//
//     class FindWindow : public quilt::Window {
//         const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
//         bool OnFind();
//         static const quilt::MessageMapEntry entries[];
//         static const quilt::MessageMap messageMap;
//     };
//     const quilt::MessageMapEntry FindWindow::entries[] = {
//         quilt::Notification(quilt::MsgClicked, 1033, &FindWindow::OnFind), quilt::EndOfMap};
//     const quilt::MessageMap FindWindow::messageMap{&quilt::Window::messageMap, entries};
//
// Every delivery is a plain call on the stack of the event that caused it.
class MessageTarget {
public:
    MessageTarget() = default;
    MessageTarget(const MessageTarget&) = delete;
    MessageTarget& operator=(const MessageTarget&) = delete;
    virtual ~MessageTarget() = default;

    virtual const MessageMap* GetMessageMap() const { return &messageMap; }
    // Routes a command id; true when some handler took it.
    virtual bool OnCommand(int32_t id);
    virtual bool InvokeCommand(int32_t id, const MessageMapEntry& entry);

    // The one entry for notifications. `parameter` points to the notification's word, or is
    // null when the kind carries none.
    bool Dispatch(int32_t kind, int32_t subKind, int32_t id, const int32_t* parameter);
    bool DispatchFromMap(const MessageMap* map, int32_t kind, int32_t subKind, int32_t id,
                         const int32_t* parameter);
    // Finds the row that Dispatch would call first, without calling it.
    bool HasHandler(int32_t kind, int32_t subKind, int32_t id, const MessageMapEntry** entry) const;

    // Chained targets are asked before the object itself; they are not owned.
    void AddTarget(MessageTarget* target);
    void RemoveTarget(MessageTarget* target);

    static const MessageMap messageMap;

private:
    bool CallNotificationHandler(const MessageMapEntry& row, int32_t kind, int32_t subKind,
                                 int32_t id, const int32_t* parameter);

    std::vector<MessageTarget*> targets;
};

} // namespace quilt
