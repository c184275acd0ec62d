// Any bytes as the card's answers to the poll cycle: each exchange takes the next piece of the
// input (pieces end at a line feed; carriage returns part the answers of a batch). A few ticks
// with every form visible must end without a fault, whatever the answers are.
#include <cstddef>
#include <cstdint>
#include <string>

#include "controller/card_link.h"
#include "system/poll_cycle.h"
#include "system/startup.h"

namespace {

class ScriptedCard : public kirvana::CardLink {
public:
    explicit ScriptedCard(std::string_view script) : script_(script) {}
    void Prepare() override {}
    void Reset() override {}
    void Select() override {}
    void SetEnabled(bool) override {}
    bool Enabled() const override { return true; }
    bool DownloadFile(const std::string&) override { return true; }
    bool Exchange(std::string_view, std::string& response) override {
        std::size_t end = script_.find('\n');
        response = std::string(script_.substr(0, end));
        script_ = end == std::string_view::npos ? std::string_view() : script_.substr(end + 1);
        return !response.empty() && response[0] != '!';  // a piece starting "!" is a failed exchange
    }

private:
    std::string_view script_;
};

struct NoPlatform : kirvana::ControllerPlatform {
    void SetFormsLocked(bool, const std::string&) override {}
    void SetPollTimer(bool, int) override {}
    void WaitForTick(int) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kirvana;
    ScriptedCard card(std::string_view(reinterpret_cast<const char*>(data), size));
    NoPlatform platform;
    Process p;
    p.Card.CardInUse = true;
    p.Config.Dirs.RootDir = "/nonexistent/";
    p.Config.Machine.HasTurret = true;
    p.Config.Machine.StationCount = 20;
    p.Config.Machine.ClampCount = 4;
    p.Config.Machine.ProfilerKind = 2;
    p.Config.Machine.HasThirdAxis = true;
    for (auto& table : p.Tools.SlotTables) table.resize(20);
    p.Display.Visible = {true, true, true, true, true, true, true, true, true, true};
    p.Display.XYMode = PositionMode::Follow;
    p.Display.RotaryMode = PositionMode::Target;
    for (int tick = 0; tick < 4; ++tick) PollCycle(p, platform, &card);
    return 0;
}
