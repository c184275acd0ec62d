// What the settings screens offer: the labels of their boxes and the choices of their combos.
// Any other value may still be typed through the pad.
#pragma once

#include <string>
#include <vector>

#include "tooling/settings.h"

namespace kirvana {

// The labels of the punch settings, the sixth following Punch.dat.
std::vector<std::string> PunchSettingLabels(const PunchData& data);
// The short labels of the turret screen's settings frame, the sixth following Punch.dat.
std::vector<std::string> TurretSettingLabels(const PunchData& data);
// The labels of the plasma settings.
std::vector<std::string> PlasmaSettingLabels();

// The choices of punch setting n (1 to 6) and plasma setting n (1 to 10). The speeds stop at
// 30000, the largest step of 5000 a 16-bit field holds. Plasma setting 10, the torch type,
// lists the torch types by their number in the list, from 1.
std::vector<std::string> PunchSettingChoices(int n, const PunchData& data);
std::vector<std::string> PlasmaSettingChoices(int n, const std::vector<std::string>& torchTypes);
// The choice shown first for a speed.
inline constexpr const char* DefaultSpeedChoice = "20000";

}  // namespace kirvana
