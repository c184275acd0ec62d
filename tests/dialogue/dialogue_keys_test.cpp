// The dialogue's keys on FrontEnd and the cursor they move.
#include <gtest/gtest.h>

#include "dialogue/dialogue_keys.h"
#include "tests/dialogue/dialogue_fixture.h"

namespace kirvana {
namespace {

TEST(DialogueKeys, EveryKeyOfTheTable) {
    EXPECT_EQ(DialogueKey(37).Command, DialogueCommand::CursorBack);
    EXPECT_EQ(DialogueKey(39).Command, DialogueCommand::CursorForward);
    EXPECT_EQ(DialogueKey(34).Command, DialogueCommand::CursorBackTen);
    EXPECT_EQ(DialogueKey(33).Command, DialogueCommand::CursorForwardTen);
    EXPECT_EQ(DialogueKey(36).Command, DialogueCommand::CursorFirst);
    EXPECT_EQ(DialogueKey(35).Command, DialogueCommand::CursorLast);
    EXPECT_EQ(DialogueKey('L').Command, DialogueCommand::Delete);
    EXPECT_EQ(DialogueKey(46).Command, DialogueCommand::Delete);
    EXPECT_EQ(DialogueKey('E').Command, DialogueCommand::Edit);
    EXPECT_EQ(DialogueKey('C').Command, DialogueCommand::Clear);
    EXPECT_EQ(DialogueKey('W').Command, DialogueCommand::Write);
    EXPECT_EQ(DialogueKey('R').Command, DialogueCommand::Load);
    EXPECT_EQ(DialogueKey('X').Command, DialogueCommand::Leave);
    EXPECT_EQ(DialogueKey('1'), (DialogueKeyResult{DialogueCommand::OpenScreen, DialogueScreen::Sheet}));
    EXPECT_EQ(DialogueKey('5'), (DialogueKeyResult{DialogueCommand::OpenScreen, DialogueScreen::Arc}));
    EXPECT_EQ(DialogueKey('9'), (DialogueKeyResult{DialogueCommand::OpenScreen, DialogueScreen::MultiPart}));
    EXPECT_EQ(DialogueKey('0').Command, DialogueCommand::None);
    EXPECT_EQ(DialogueKey('Q').Command, DialogueCommand::None);
    EXPECT_STREQ(ImperialButtonCaption(false), "I&MPERIAL");
    EXPECT_STREQ(ImperialButtonCaption(true), "&METRIC");
}

using DialogueKeysSession = DialogueFixture;

TEST_F(DialogueKeysSession, TheCursorKeysMoveAndClamp) {
    StartWithSheet();
    for (int i = 0; i < 12; ++i) Add(ComposePunch(10.0 * i, 10, 0, 0, ToolOf(1), session.Last(), session.Limits()));
    ASSERT_EQ(session.State.EntityCount, 13);
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(34).Command));  // page down: back 10
    EXPECT_EQ(session.CursorCountText(), "3 / 13");
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(37).Command));
    EXPECT_EQ(session.State.EntityCursor, 2);
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(34).Command));
    EXPECT_EQ(session.State.EntityCursor, 1);
    EXPECT_EQ(session.CursorDescription(), "Beginning");
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(33).Command));  // page up: on 10
    EXPECT_EQ(session.State.EntityCursor, 11);
    EXPECT_EQ(session.CursorDescription(), "Punch");
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(35).Command));
    EXPECT_EQ(session.State.EntityCursor, 13);
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(39).Command));
    EXPECT_EQ(session.State.EntityCursor, 13);
    EXPECT_TRUE(ApplyCursorCommand(session, DialogueKey(36).Command));
    EXPECT_EQ(session.State.EntityCursor, 1);
    EXPECT_FALSE(ApplyCursorCommand(session, DialogueKey('W').Command));
}

}  // namespace
}  // namespace kirvana
