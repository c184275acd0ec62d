#include "navigation/program_change.h"

#include "system/startup.h"

namespace kirvana {

Refusal ChangeProgram(Process& process, StartupPlatform& platform, CardLink* link, int slot) {
    if (slot != 1 && slot != 2) return std::nullopt;
    // 2. Not while the machine is in a cycle or in feedhold.
    if (process.InCycle || process.InFeedhold) {
        std::string text = "Can Not Change Program\n\nWhile Machine Is Running !";
        platform.ShowWarning(text + "\n\n\n");
        return text;
    }
    // 3. The poll pauses; the slot's program directory becomes the current one.
    Conversation talk(link, process.Card, process.Config.Dirs.ServiceDir, &platform);
    talk.StopPollTimer(false);
    const SlotRecord& record = process.Slots[slot - 1];
    // SetProgramDir writes Control.cfg; ChangeActiveSlot writes it again with the slot, and says so
    // when it can't.
    if (record.Present && !record.ProgramDirName.empty())
        static_cast<void>(SetProgramDir(process.Config, record.ProgramDirName));
    // 3, 4. Active slot, Control.cfg and the slot's blocks to the card. The slot change keeps its
    // own interlock of the machine commands (on `Running`): the switch is refused in a cycle, in
    // feedhold or while running, the two checks together.
    Refusal refusal = ChangeActiveSlot(process, platform, link, slot);
    if (refusal) platform.ShowWarning(*refusal + "\n\n\n");
    // 6. The poll resumes.
    if (process.Card.PollRunning) talk.StartPollTimer(false);
    return refusal;
}

}  // namespace kirvana
