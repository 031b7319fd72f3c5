#include "quilt/message_target.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using quilt::AnyControl;
using quilt::MessageMap;
using quilt::MessageMapEntry;

class BaseTarget : public quilt::MessageTarget {
public:
    const MessageMap* GetMessageMap() const override { return &messageMap; }

    std::vector<std::string> log;

protected:
    bool OnBaseOk() { return Record("base-ok", true); }
    bool OnBaseCommand(int32_t id) { return Record("base-command-" + std::to_string(id), true); }
    bool OnBaseRange() { return Record("base-range", true); }

    bool Record(const std::string& entry, bool handled) {
        log.push_back(entry);
        return handled;
    }

    static const MessageMapEntry entries[];
    static const MessageMap messageMap;
};

const MessageMapEntry BaseTarget::entries[] = {
    quilt::Notification(quilt::MsgClicked, 1, &BaseTarget::OnBaseOk),
    quilt::Command(100, &BaseTarget::OnBaseCommand),
    quilt::CommandRange(200, 210, &BaseTarget::OnBaseRange),
    quilt::EndOfMap,
};
const MessageMap BaseTarget::messageMap{&quilt::MessageTarget::messageMap, entries};

class DerivedTarget : public BaseTarget {
public:
    const MessageMap* GetMessageMap() const override { return &messageMap; }

private:
    bool OnAnyClickEarly(int32_t id) { return Record("early-" + std::to_string(id), true); }
    bool OnAnyClickLate(int32_t id) { return Record("late-" + std::to_string(id), true); }
    bool OnFive() { return Record("five", true); }
    bool OnOkDeclines() { return Record("derived-ok", false); }
    bool OnEnter(int32_t word) { return Record("enter-" + std::to_string(word), true); }
    bool OnSlider(int32_t kind, int32_t, int32_t id) {
        return Record("slider-" + std::to_string(kind) + "-" + std::to_string(id), true);
    }
    bool OnCommandDeclines() { return Record("derived-command", false); }
    bool OnNeverCalled() { return Record("never", true); }

    static const MessageMapEntry entries[];
    static const MessageMap messageMap;
};

MessageMapEntry WithSignature(MessageMapEntry row, int32_t signature) {
    row.signature = signature;
    return row;
}

const MessageMapEntry DerivedTarget::entries[] = {
    quilt::NotificationRange(quilt::MsgClicked, AnyControl, AnyControl,
                             &DerivedTarget::OnAnyClickEarly),
    quilt::NotificationRange(quilt::MsgClicked, AnyControl, AnyControl,
                             &DerivedTarget::OnAnyClickLate),
    quilt::Notification(quilt::MsgClicked, 5, &DerivedTarget::OnFive),
    quilt::Notification(quilt::MsgClicked, 1, &DerivedTarget::OnOkDeclines),
    quilt::Notification(quilt::MsgEnterKey, 7, &DerivedTarget::OnEnter),
    quilt::NotificationRange(quilt::MsgSliderTrack, 1, 10, &DerivedTarget::OnSlider),
    WithSignature(quilt::Notification(quilt::MsgTabChange, 8, &DerivedTarget::OnNeverCalled), 7),
    quilt::Command(100, &DerivedTarget::OnCommandDeclines),
    WithSignature(quilt::Command(300, &DerivedTarget::OnNeverCalled), 4),
    quilt::EndOfMap,
};
const MessageMap DerivedTarget::messageMap{&BaseTarget::messageMap, entries};

const int32_t five = 5;
const int32_t twelve = 12;

TEST(MessageTargetTest, DispatchTakesExactRowsFirstAndFallsThroughToTheBase) {
    using Log = std::vector<std::string>;
    const std::tuple<const char*, int32_t, int32_t, const int32_t*, bool, Log> cases[] = {
        {"exact row behind two catch-alls", quilt::MsgClicked, 5, &five, true, {"five"}},
        {"later catch-all wins", quilt::MsgClicked, 12, &twelve, true, {"late-12"}},
        {"a catch-all is exact for id -1", quilt::MsgClicked, -1, nullptr, true, {"early-0"}},
        {"declining row", quilt::MsgClicked, 1, nullptr, true, {"derived-ok", "base-ok"}},
        {"null parameter gives 0", quilt::MsgEnterKey, 7, nullptr, true, {"enter-0"}},
        {"three arguments", quilt::MsgSliderTrack, 4, nullptr, true, {"slider-17-4"}},
        {"invalid signature is unhandled", quilt::MsgTabChange, 8, nullptr, false, {}},
    };
    for (const auto& [name, kind, id, parameter, handled, log] : cases) {
        DerivedTarget target;
        EXPECT_EQ(target.Dispatch(kind, 0, id, parameter), handled) << name;
        EXPECT_EQ(target.log, log) << name;
    }
}

TEST(MessageTargetTest, CommandsTryTheFirstMatchingRowOfEachMap) {
    const std::tuple<int32_t, bool, std::vector<std::string>> cases[] = {
        {100, true, {"derived-command", "base-command-100"}},
        {205, true, {"base-range"}},
        {300, false, {}},
        {999, false, {}},
    };
    for (const auto& [id, handled, log] : cases) {
        DerivedTarget target;
        EXPECT_EQ(target.OnCommand(id), handled) << id;
        EXPECT_EQ(target.log, log) << id;
    }
}

} // namespace
