#include "tooling/settings_choices.h"

#include "core/number.h"

namespace kirvana {

namespace {

std::vector<std::string> Steps(double from, double to, double step, int decimals) {
    std::vector<std::string> texts;
    for (int i = 0;; ++i) {
        double value = from + i * step;
        if (value > to + step / 1000) break;
        texts.push_back(FormatNumber(Number(value), decimals));
    }
    return texts;
}

}  // namespace

std::vector<std::string> PunchSettingLabels(const PunchData& data) {
    return {"FEED RATE (%) :  &1",        "ACCELERATION (%) :  &2",     "PRE PUNCH DELAY (S) :  &3",
            "POST PUNCH DELAY (S) :  &4", "IN POSITION DISTANCE :  &5", data.RamTimerCaption + " :  &6"};
}

std::vector<std::string> TurretSettingLabels(const PunchData& data) {
    return {"FEED (%) :",       "ACCEL (%) :",   "PRE DELAY(S) :",
            "POST DELAY (S) :", "IN POSITION :", data.RamTimerCaption + " :"};
}

std::vector<std::string> PlasmaSettingLabels() {
    return {"RAPID SPEED :  &1",
            "CUTTING SPEED :  &2",
            "MIN CORNER SPEED :  &3",
            "HEIGHT FREEZE SPEED :  &4",
            "AUTO-HEIGHT ON DISTANCE :  &5",
            "AUTO-HEIGHT OFF DISTANCE :  &6",
            "ARC / RAD SLOWDOWN :  &7",
            "KERF WIDTH :  &8",
            "PIERCE DWELL TIME (S) :  &9",
            "PLASMA TORCH TYPE :"};
}

std::vector<std::string> PunchSettingChoices(int n, const PunchData& data) {
    switch (n) {
        case 1:
        case 2:
            return Steps(10, 100, 10, 0);
        case 3:
        case 4:
            return Steps(0, 1, 0.05, 2);
        case 5:
            return Steps(0, 1, 0.1, 1);
        case 6: {
            std::vector<std::string> texts;
            if (!data.RamTimerChoice) return texts;
            for (float value : data.RamTimerChoices) texts.push_back(FormatNumber(Number(value), -1));
            return texts;
        }
        default:
            return {};
    }
}

std::vector<std::string> PlasmaSettingChoices(int n, const std::vector<std::string>& torchTypes) {
    switch (n) {
        case 1:
        case 2:
            return Steps(5000, 30000, 5000, 0);
        case 3:
        case 4:
            return {"100", "250", "500", "750", "1000", "1500", "2000", "2500", "3000", "4000", "5000"};
        case 5:
        case 6:
            return {"0.5", "1.0", "1.5", "2.0", "2.5", "3.0", "4.0", "5.0", "7.5", "10.0"};
        case 7:
            return Steps(100, 250, 25, 0);
        case 8:
            return Steps(10, 15, 0.5, 1);
        case 9:
            return {"0.00", "0.10", "0.20", "0.30", "0.40", "0.50", "0.75",
                    "1.00", "1.50", "2.00", "3.00", "5.00", "10.00"};
        case 10: {
            std::vector<std::string> texts;
            for (std::size_t i = 0; i < torchTypes.size(); ++i) texts.push_back(std::to_string(i + 1));
            return texts;
        }
        default:
            return {};
    }
}

}  // namespace kirvana
