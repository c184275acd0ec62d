#include "tooling/settings.h"

#include <gtest/gtest.h>

#include "core/paths.h"
#include "tests/core/temp_dir.h"
#include "tooling/settings_choices.h"

using namespace kirvana;

namespace {

Directories DirsIn(const TempDir& dir) {
    Directories dirs;
    dirs.RootDir = dir.Path();
    dirs.DataDir = dir.Path() + "Data/";
    dirs.SettingsDir = dir.Path() + "Settings/";
    dirs.ServiceDir = dir.Path() + "Service/";
    return dirs;
}

std::string LastFile(const TempDir& dir) {
    auto lines = ReadLines(dir.Path() + "Service/LastFile.txt");
    return lines && !lines->empty() ? lines->front() : std::string();
}

const char* CutSet = "Mild steel 3mm\n3000\n2400\n1200\n900\n2.5\n4\n150\n1.8\n0.4\n2\n******\n";

}  // namespace

TEST(PunchData, WithoutTheFileTheSixthSettingIsTheRamTimerWithChoicesZeroToTen) {
    TempDir dir;
    dir.Write("Service/.keep", "");
    PunchData data;
    data.RamTimerCaption = "OLD";
    EXPECT_FALSE(ReadPunchFile(DirsIn(dir), data));
    EXPECT_EQ(data.RamTimerCaption, "RAM TIMER (MS)");
    EXPECT_TRUE(data.RamTimerChoice);
    EXPECT_EQ(data.RamTimerChoices, (std::vector<float>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(PunchData, TheFileGivesCaptionChoiceAndList) {
    TempDir dir;
    dir.Write("Service/.keep", "");
    dir.Write("Data/Punch.dat", "Caption: dwell (ms)\nChoice: No\n0\n50\n100.5\n******\n200\n");
    PunchData data;
    EXPECT_FALSE(ReadPunchFile(DirsIn(dir), data));
    EXPECT_EQ(data.RamTimerCaption, "DWELL (MS)");
    EXPECT_FALSE(data.RamTimerChoice);
    EXPECT_EQ(data.RamTimerChoices, (std::vector<float>{0, 50, 100.5f}));
    EXPECT_EQ(LastFile(dir), dir.Path() + "Data/Punch.dat");
}

TEST(PunchData, AFileWithNoNumbersGivesTheDefaults) {
    TempDir dir;
    dir.Write("Service/.keep", "");
    dir.Write("Data/Punch.dat", "Caption: dwell\nChoice: N\n\n5\n");
    PunchData data;
    EXPECT_FALSE(ReadPunchFile(DirsIn(dir), data));
    EXPECT_EQ(data.RamTimerCaption, "RAM TIMER (MS)");
    EXPECT_TRUE(data.RamTimerChoice);
    EXPECT_EQ(data.RamTimerChoices.size(), 11u);
}

TEST(PlasmaData, TorchTypesUpToTheMarkerOrElseTheToolNameTwice) {
    TempDir dir;
    dir.Write("Service/.keep", "");
    PlasmaData data;
    EXPECT_FALSE(ReadPlasmaFile(DirsIn(dir), data));
    EXPECT_EQ(TorchTypeList(data, " PLASMA "), (std::vector<std::string>{"PLASMA", "PLASMA"}));
    dir.Write("Data/Plasma.dat", "HPR130 Air\r\nHPR130 O2\r\n******\r\nNot this\r\n");
    EXPECT_FALSE(ReadPlasmaFile(DirsIn(dir), data));
    EXPECT_EQ(TorchTypeList(data, "PLASMA"), (std::vector<std::string>{"HPR130 Air", "HPR130 O2"}));
    dir.Write("Data/Plasma.dat", "A\n\nB\n");
    EXPECT_FALSE(ReadPlasmaFile(DirsIn(dir), data));
    EXPECT_EQ(data.TorchTypes, (std::vector<std::string>{"A"}));
}

TEST(SettingsArray, ClearCopyMergeAndPlasmaSlots) {
    SettingsArray a;
    a.fill(1);
    ClearSettings(a);
    for (float v : a) EXPECT_EQ(v, NoValue);
    SettingsArray b;
    b.fill(2);
    b[3] = NoValue;
    MergeSettings(b, a);
    EXPECT_EQ(a[0], 2);
    EXPECT_EQ(a[3], NoValue);
    a[3] = 7;
    MergeSettings(b, a);
    EXPECT_EQ(a[3], 7);  // an unset slot of the source doesn't overwrite
    CopySettings(b, a);
    EXPECT_EQ(a[3], NoValue);
    EXPECT_EQ(a, b);

    PlasmaSetting p;
    p.RapidSpeed = 1;
    p.CutSpeed = 2;
    p.MinCornerSpeed = 3;
    p.FreezeSpeed = 4;
    p.HeightOn = 5.5f;
    p.HeightOff = 6.5f;
    p.Slowdown = 7;
    p.Kerf = 8.5f;
    p.Pierce = 9.5f;
    p.TorchType = 10;
    ClearSettings(a);
    PlasmaToSettings(p, a);
    const std::vector<float> expected = {1, 2, 3, 4, 5.5f, 6.5f, 7, 8.5f, 9.5f, 10};
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(a[i], expected[i]) << i;
    for (std::size_t i = 10; i < SettingsSlots; ++i) EXPECT_EQ(a[i], NoValue) << i;
}

TEST(PunchSettingFile, SaveAndLoadRoundTrip) {
    TempDir dir;
    PunchSetting s;
    s.FeedPercent = 80;
    s.AccelPercent = 60;
    s.PreDelay = 0.1f;
    s.PostDelay = 0.25f;
    s.InPosition = 0.05f;
    s.RamTimer = 5;
    ASSERT_TRUE(SavePunchSetting(dir.Path() + "Thin.stg", "Thin sheet", s));
    EXPECT_EQ(*ReadLines(dir.Path() + "Thin.stg"),
              (std::vector<std::string>{"Thin sheet", "80", "60", "0.1", "0.25", "0.05", "5", "******"}));
    PunchSetting back;
    std::string description;
    EXPECT_EQ(LoadPunchSetting(dir.Path() + "Thin.stg", description, back), SettingsLoad::Loaded);
    EXPECT_EQ(description, "Thin sheet");
    EXPECT_EQ(back.FeedPercent, 80);
    EXPECT_EQ(back.AccelPercent, 60);
    EXPECT_EQ(back.PreDelay, 0.1f);
    EXPECT_EQ(back.PostDelay, 0.25f);
    EXPECT_EQ(back.InPosition, 0.05f);
    EXPECT_EQ(back.RamTimer, 5);
}

TEST(PunchSettingFile, MissingEmptyAndBadFiles) {
    TempDir dir;
    PunchSetting s;
    s.FeedPercent = 5;
    std::string description = "x";
    EXPECT_EQ(LoadPunchSetting(dir.Path() + "None.stg", description, s), SettingsLoad::Missing);
    EXPECT_EQ(s.FeedPercent, 100);
    EXPECT_EQ(description, "");
    dir.Write("Empty.stg", "");
    s.FeedPercent = 5;
    EXPECT_EQ(LoadPunchSetting(dir.Path() + "Empty.stg", description, s), SettingsLoad::NoDescription);
    EXPECT_EQ(s.FeedPercent, 100);
    // Unreadable numbers read as 0; a 16-bit value out of range too; missing lines keep
    // the defaults.
    dir.Write("Bad.stg", "Bad\nfast\n99999\n");
    EXPECT_EQ(LoadPunchSetting(dir.Path() + "Bad.stg", description, s), SettingsLoad::Loaded);
    EXPECT_EQ(s.FeedPercent, 0);
    EXPECT_EQ(s.AccelPercent, 0);
    EXPECT_EQ(s.PreDelay, 0);
    EXPECT_EQ(s.RamTimer, 0);
    dir.Write("Short.stg", "Short\n90\n******\n7\n");
    EXPECT_EQ(LoadPunchSetting(dir.Path() + "Short.stg", description, s), SettingsLoad::Loaded);
    EXPECT_EQ(s.FeedPercent, 90);
    EXPECT_EQ(s.AccelPercent, 100);
}

TEST(PlasmaSettingFile, SaveAndLoadRoundTripWithUnsetFields) {
    TempDir dir;
    dir.Write("Cut.pls", CutSet);
    PlasmaSetting p;
    std::string description;
    EXPECT_EQ(LoadPlasmaSetting(dir.Path() + "Cut.pls", description, p), SettingsLoad::Loaded);
    EXPECT_EQ(description, "Mild steel 3mm");
    EXPECT_EQ(p.RapidSpeed, 3000);
    EXPECT_EQ(p.CutSpeed, 2400);
    EXPECT_EQ(p.MinCornerSpeed, 1200);
    EXPECT_EQ(p.FreezeSpeed, 900);
    EXPECT_EQ(p.HeightOn, 2.5f);
    EXPECT_EQ(p.HeightOff, 4);
    EXPECT_EQ(p.Slowdown, 150);
    EXPECT_EQ(p.Kerf, 1.8f);
    EXPECT_EQ(p.Pierce, 0.4f);
    EXPECT_EQ(p.TorchType, 2);
    p.Kerf = NoValue;
    p.Slowdown = NoWord;
    ASSERT_TRUE(SavePlasmaSetting(dir.Path() + "Out.pls", "Out", p));
    auto lines = ReadLines(dir.Path() + "Out.pls");
    ASSERT_TRUE(lines);
    ASSERT_EQ(lines->size(), 12u);
    EXPECT_EQ((*lines)[7], "-999");
    EXPECT_EQ((*lines)[8], "-999");
    EXPECT_EQ((*lines)[11], "******");
    PlasmaSetting back;
    LoadPlasmaSetting(dir.Path() + "Out.pls", description, back);
    EXPECT_EQ(back.Kerf, NoValue);
    EXPECT_EQ(back.Slowdown, NoWord);
    EXPECT_EQ(back.Pierce, 0.4f);
}

TEST(PlasmaSettingFile, MissingFileClearsTheSet) {
    TempDir dir;
    PlasmaSetting p;
    p.CutSpeed = 5;
    std::string description;
    EXPECT_EQ(LoadPlasmaSetting(dir.Path() + "None.pls", description, p), SettingsLoad::Missing);
    EXPECT_FALSE(PlasmaSettingIsSet(p));
}

TEST(DefaultPlasma, DefaultFileThenFirstSetThenNothing) {
    TempDir dir;
    Directories dirs = DirsIn(dir);
    dir.Write("Settings/.keep", "");
    DefaultPlasma none = DefaultPlasmaSetting(dirs);
    EXPECT_FALSE(PlasmaSettingIsSet(none.Setting));
    EXPECT_EQ(none.Name, "");

    dir.Write("Settings/Stainless.pls", "Stainless\n2000\n1500\n800\n600\n2\n3\n125\n1.5\n0.6\n1\n******\n");
    dir.Write("Settings/Aluminium.pls", CutSet);
    DefaultPlasma first = DefaultPlasmaSetting(dirs);
    EXPECT_EQ(first.Name, "Aluminium");
    EXPECT_EQ(first.Setting.RapidSpeed, 3000);

    dir.Write("Settings/Default.pls", "Default\n2500\n2000\n1000\n700\n2\n3.5\n150\n1.6\n0.5\n1\n******\n");
    DefaultPlasma standard = DefaultPlasmaSetting(dirs);
    EXPECT_EQ(standard.Name, "Default");
    EXPECT_EQ(standard.Description, "Default");
    EXPECT_EQ(standard.Setting.RapidSpeed, 2500);
}

TEST(DefaultPlasma, ASetWithEveryFieldUnsetCountsAsNoSet) {
    TempDir dir;
    Directories dirs = DirsIn(dir);
    dir.Write("Settings/Default.pls", "Default\n2500\n2000\n1000\n700\n2\n3.5\n150\n1.6\n0.5\n1\n******\n");
    dir.Write("Prog.pls", "Blank\n-999\n-999\n-999\n-999\n-999\n-999\n-999\n-999\n-999\n-999\n******\n");
    PlasmaSetting p;
    std::string description;
    ASSERT_EQ(LoadPlasmaSetting(dir.Path() + "Prog.pls", description, p), SettingsLoad::Loaded);
    EXPECT_FALSE(PlasmaSettingIsSet(p));
    EXPECT_EQ(ProgramPlasmaSetting(dirs, dir.Path() + "Prog.pls").RapidSpeed, 2500);
    // One field set makes it a set of its own.
    dir.Write("Prog.pls", "One\n-999\n1800\n-999\n-999\n-999\n-999\n-999\n-999\n-999\n-999\n******\n");
    PlasmaSetting own = ProgramPlasmaSetting(dirs, dir.Path() + "Prog.pls");
    EXPECT_EQ(own.CutSpeed, 1800);
    EXPECT_EQ(own.RapidSpeed, NoWord);
}

TEST(SaveSettings, AnExistingNameAnsweredNoLeavesTheFileAsItWas) {
    TempDir dir;
    Directories dirs = DirsIn(dir);
    dir.Write("Settings/Thick.stg", "Thick plate\n50\n50\n0.2\n0.2\n0\n8\n******\n");
    const auto before = *ReadLines(dir.Path() + "Settings/Thick.stg");
    std::vector<std::string> asked;
    PunchSetting s;
    auto outcome = SavePunchSettingAs(dirs, "Thick", "New text", s, [&](const std::vector<std::string>& lines) {
        asked = lines;
        return false;
    });
    EXPECT_EQ(outcome, SaveOutcome::Declined);
    EXPECT_EQ(asked, (std::vector<std::string>{"Settings", "Thick", "Already Exist !", "Overwrite Them ?"}));
    EXPECT_EQ(*ReadLines(dir.Path() + "Settings/Thick.stg"), before);

    // Answered yes, the set is written over the old one.
    outcome = SavePunchSettingAs(dirs, "thick", "New text", s, [](const std::vector<std::string>&) { return true; });
    EXPECT_EQ(outcome, SaveOutcome::Saved);
    EXPECT_EQ(ReadLines(dir.Path() + "Settings/Thick.stg")->front(), "New text");
    EXPECT_EQ(SettingNames(dirs, ".stg"), (std::vector<std::string>{"Thick"}));

    // A new name is written without a question.
    bool questioned = false;
    PlasmaSetting p;
    outcome = SavePlasmaSettingAs(dirs, "Fresh", "Fresh", p, [&](const std::vector<std::string>&) {
        questioned = true;
        return true;
    });
    EXPECT_EQ(outcome, SaveOutcome::Saved);
    EXPECT_FALSE(questioned);
    EXPECT_EQ(SettingNames(dirs, ".pls"), (std::vector<std::string>{"Fresh"}));
    EXPECT_EQ(SavePunchSettingAs(dirs, "  ", "x", s, nullptr), SaveOutcome::InvalidName);
    // The names of every file the operator names: nothing that leads out of the folder.
    for (const char* name : {"../Outside", "..\\Outside", "/tmp/x", "A\tB"})
        EXPECT_EQ(SavePunchSettingAs(dirs, name, "x", s, nullptr), SaveOutcome::InvalidName) << name;
}

TEST(SettingsScreens, LabelsAndChoicesFollowPunchDat) {
    PunchData data;
    EXPECT_EQ(PunchSettingLabels(data).back(), "RAM TIMER (MS) :  &6");
    EXPECT_EQ(TurretSettingLabels(data).back(), "RAM TIMER (MS) :");
    EXPECT_EQ(PunchSettingChoices(6, data).size(), 11u);
    data.RamTimerCaption = "DWELL";
    data.RamTimerChoice = false;
    EXPECT_EQ(PunchSettingLabels(data).back(), "DWELL :  &6");
    EXPECT_TRUE(PunchSettingChoices(6, data).empty());
    EXPECT_EQ(PlasmaSettingLabels().size(), 10u);
    auto speeds = PlasmaSettingChoices(1, {});
    EXPECT_EQ(speeds.front(), "5000");
    EXPECT_EQ(speeds.back(), "30000");
    EXPECT_EQ(PlasmaSettingChoices(7, {}), (std::vector<std::string>{"100", "125", "150", "175", "200", "225", "250"}));
    EXPECT_EQ(PlasmaSettingChoices(8, {}).front(), "10.0");
    EXPECT_EQ(PlasmaSettingChoices(8, {}).back(), "15.0");
    EXPECT_EQ(PlasmaSettingChoices(10, {"AIR", "O2"}), (std::vector<std::string>{"1", "2"}));
}
