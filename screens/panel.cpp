#include "screens/panel.h"

#include <QApplication>
#include <QEventLoop>
#include <QMessageBox>
#include <QProcess>
#include <QScreen>
#include <cstdio>
#include <filesystem>

#include "navigation/pad_entry.h"
#include "navigation/program_change.h"
#include "screens/dialogue_entity_form.h"
#include "screens/dialogue_front.h"
#include "screens/file_forms.h"
#include "screens/front_end.h"
#include "screens/machine_forms.h"
#include "screens/message_form.h"
#include "screens/pad_forms.h"
#include "screens/panel_style.h"
#include "screens/plot_box.h"
#include "screens/program_form.h"
#include "screens/restart_forms.h"
#include "screens/shutdown_form.h"
#include "screens/splash_form.h"
#include "screens/tooling_forms.h"
#include "screens/user_form.h"
#include "screens/warning_form.h"
#include "system/poll_cycle.h"

namespace kirvana {

Panel::Panel(PanelOptions options)
    : options_(std::move(options)), link_(CardAddress{}, options_.CardTimeoutMs), colours_(DefaultColours()) {
    steps_.ConfigureCard = [this](Process& process) {
        link_.SetAddress(ParseCardAddress(process.Config.Card.CardAddressLine), options_.CardTimeoutMs);
    };
    // Colour.cfg of the current directory: the start reads it before RootDir is known.
    steps_.ReadColours = [this](Process&) {
        ColourConfig config = ReadColourConfig("");
        colours_ = config.Colours;
        startNote_ = config.Note;
    };
    // Plot.cfg of the installation; the cursor modes start clear.
    steps_.ReadPlotConfig = [this](Process& process) {
        plotConfig_ = ReadPlotConfig(process.Config.Dirs.RootDir);
        nav_.ViewMode = 0;
    };
    link_.SetFaultHandler([this](std::int32_t number, const std::string& description) {
        // A link that fails to open during the start: "Initialisation Failure !" speaks for it.
        if (starting_ && !link_.Enabled()) return;
        HandleCardFault(process_, *this, &link_, steps_, number, description);
    });
    connect(&pollTimer_, &QTimer::timeout, this, [this] { PollTimerTick(); });
    RegisterForms();
}

Panel::~Panel() { pollTimer_.stop(); }

void Panel::RegisterForms() {
    forms_.Register("WarningForm", [this] { return std::make_unique<WarningForm>(*this); });
    forms_.Register("MessageForm", [this] { return std::make_unique<MessageForm>(*this); });
    forms_.Register("ShutdownForm", [this] { return std::make_unique<ShutdownForm>(*this); });
    forms_.Register("NumberForm", [this] { return std::make_unique<NumberForm>(*this); });
    forms_.Register("KeyboardForm", [this] { return std::make_unique<KeyboardForm>(*this); });
    forms_.Register("UserForm", [this] { return std::make_unique<UserForm>(*this); });
    RegisterProgramForms(*this, forms_);
    RegisterRestartForms(*this, forms_);
    RegisterToolingForms(*this, forms_);
    RegisterMachineForms(forms_, *this);
    RegisterFileForms(*this);
    RegisterDialogueForms(*this, forms_);
}

DialogueFront& Panel::Dialogue() {
    if (!dialogue_) dialogue_ = std::make_unique<DialogueFront>(*this);
    return *dialogue_;
}

int Panel::Start(const std::string& root) {
    std::error_code error;
    std::filesystem::current_path(root, error);
    if (error) {
        std::fprintf(stderr, "kirvana: cannot use %s as the installation: %s\n", root.c_str(), error.message().c_str());
        return 3;
    }
    starting_ = true;
    StartOutcome outcome = Main(process_, *this, &link_, steps_);
    starting_ = false;
    if (outcome.Result == StartOutcome::Kind::ConfigurationFault) {
        std::string text = "Kirvana 32 cannot start: " + outcome.Fault.Message();
        std::fprintf(stderr, "%s\n", text.c_str());
        if (splash_) splash_->hide();
        ShowMessageBox(text, SystemTitle);
    }
    return outcome.ExitCode();
}

Conversation Panel::Talk() { return Conversation(&link_, process_.Card, process_.Config.Dirs.ServiceDir, this); }

void Panel::MainKeyPressed(int code) {
    if (ended_) return;
    modeBeforeKey_ = nav_.ViewMode;
    // The dialogue's own keys first, on FrontEnd only; the rest (F9, X) go on to MainKey.
    if (nav_.DialogueOn && !process_.Card.FormsLocked && !QApplication::activeModalWidget() && Dialogue().Key(code))
        return;
    DoKeyAction(MainKey(nav_, process_.Config.Machine, process_.Card.FormsLocked, code));
}

void Panel::DoKeyAction(const KeyResult& result) {
    switch (result.Action) {
        case KeyAction::None:
            return;
        case KeyAction::Beep:
            QApplication::beep();
            return;
        case KeyAction::ShowForm:
        case KeyAction::ShowModal:
            OpenForm(result.Form);
            return;
        case KeyAction::ChangeProgram:
            ChangeProgramTo(result.Index);
            return;
        case KeyAction::GraphicsButton:
            GraphicsButton(result.Index);
            return;
        case KeyAction::CursorKey:
            PlotCursorKey(result.Index, modeBeforeKey_);
            if (frontEnd_ && nav_.ViewMode == 0) frontEnd_->SetText("");
            break;
        case KeyAction::CursorCancel:
            HidePlotCursor();
            if (frontEnd_) frontEnd_->SetText("");
            break;
        case KeyAction::PathKey:
            // The place the key reached stays on TextPanel, over the mode's prompt.
            if (frontEnd_) frontEnd_->ShowNavigation();
            PlotPathKey(result.Index);
            return;
        case KeyAction::ToggleLimits:
            RedrawPlot(ActivePlot());
            break;
        case KeyAction::EnterDialogue:
            Dialogue().Enter();
            break;
        case KeyAction::LeaveDialogue:
            if (frontEnd_) frontEnd_->ShowNavigation();
            Dialogue().Leave();
            break;
        default:
            break;
    }
    if (frontEnd_) frontEnd_->ShowNavigation();
}

bool Panel::OpenForm(const std::string& name) {
    if (ended_) return false;
    if (name == "WarningForm") {
        ShowWarning("This is how the panel tells the operator\nof a refusal or asks a question.\n\n\n",
                    WarningKind::Notice, 1);
        return true;
    }
    if (name == "NumberForm") {
        double value = 0;
        EnterNumber(value, "0", -5);
        return true;
    }
    if (name == "KeyboardForm") {
        std::string text;
        EnterText(text, 18);
        return true;
    }
    PanelForm* form = forms_.Get(name);
    if (!form) {
        std::fprintf(stderr, "kirvana: %s is not part of this build yet\n", name.c_str());
        if (frontEnd_) frontEnd_->SetText(name + " IS NOT PART OF THIS BUILD YET");
        return false;
    }
    RunModal(form);
    return true;
}

void Panel::ShowCurrentForm(const std::string& name) {
    if (name == "FrontEnd" && frontEnd_) {
        frontEnd_->raise();
        frontEnd_->activateWindow();
        return;
    }
    PanelForm* form = forms_.Loaded(name);
    if (form && form->isVisible()) {
        form->raise();
        form->activateWindow();
        return;
    }
    OpenForm(name);
}

void Panel::RunModal(PanelForm* form) {
    if (form->isVisible()) {
        form->raise();
        form->activateWindow();
        return;
    }
    // Centred over FrontEnd.
    QRect area = frontEnd_ && frontEnd_->isVisible() ? frontEnd_->geometry() : QRect(0, 0, 1024, 768);
    QSize size = form->size().expandedTo(form->minimumSizeHint());
    form->move(area.center() - QPoint(size.width() / 2, size.height() / 2));
    form->exec();
    if (frontEnd_ && frontEnd_->isVisible() && !process_.ShuttingDown) {
        FrontEndActivated();
        frontEnd_->ShowNavigation();
    }
}

void Panel::ChangeProgramTo(int slot) {
    // A pick for the visual restart belongs to the slot's plot it started on.
    if (visual_.Active) CursorCancel();
    // 1. The forms of the program and its tooling close first.
    for (const std::string& name : FormsClosedByProgramChange())
        if (PanelForm* form = forms_.Loaded(name); form && form->isVisible()) form->reject();
    // 2 to 4, 6: refused while running, else the switch; 5: the slot's plot box.
    ChangeProgram(process_, *this, &link_, slot);
    if (frontEnd_) frontEnd_->ShowNavigation();
    RedrawPlot(ActivePlot());
}

void Panel::GraphicsButton(int index) {
    std::string text = GraphicsButtonPressed(nav_, index);
    if (!frontEnd_) return;
    frontEnd_->ShowNavigation();
    if (!text.empty()) frontEnd_->SetText(text);
    PlotGraphicsButton(index);
}

void Panel::CursorButton(int index) {
    if (nav_.ViewMode >= 5 && nav_.ViewMode <= 8) {
        DoKeyAction({KeyAction::PathKey, {}, index});
        return;
    }
    PlotCursorKey(index, nav_.ViewMode);
    CursorButtonPressed(nav_, index);
    if (frontEnd_) {
        if (nav_.ViewMode == 0) frontEnd_->SetText("");
        frontEnd_->ShowNavigation();
    }
}

void Panel::CursorCancel() {
    if (nav_.ViewMode >= 5 && nav_.ViewMode <= 8) {
        nav_.ViewMode = 0;
        // The pick ends; the path keys start again on the slot's drawing, shown whole again
        // when a pattern was split.
        const bool split = visual_.Record > 0;
        visual_ = VisualRestart{};
        path_ = PathStepper{};
        if (split) RedrawPlot(ActivePlot(), false);
    } else
        CursorCancelled(nav_);
    DoKeyAction({KeyAction::CursorCancel, {}, 0});
}

int Panel::ShowWarning(const std::string& text, WarningKind kind, int defaultButton) {
    if (ended_ || !warning_.Open(text, kind, defaultButton)) return 0;
    auto* form = static_cast<WarningForm*>(forms_.Get("WarningForm"));
    RunModal(form);
    int pressed = form->Pressed();
    // Closed without a button: the last one, OK, NO or CANCEL.
    if (pressed == 0) pressed = static_cast<int>(WarningCaptions(kind).size());
    warning_.Close(pressed);
    return pressed;
}

bool Panel::EnterNumber(double& value, const std::string& text, int mode) {
    auto* form = static_cast<NumberForm*>(forms_.Get("NumberForm"));
    if (form->isVisible()) return false;
    form->Begin(text, mode);
    RunModal(form);
    value = PadNumber(form->PadText());
    return form->Accepted();
}

bool Panel::EnterText(std::string& text, int mode) {
    auto* form = static_cast<KeyboardForm*>(forms_.Get("KeyboardForm"));
    if (form->isVisible()) return false;
    form->Begin(text, mode);
    RunModal(form);
    text = PadText(form->PadText());
    return form->Accepted();
}

void Panel::SetVisibleFlag(const std::string& name, bool visible) {
    FormVisibility& v = process_.Display.Visible;
    if (name == "MessageForm")
        v.MessageForm = visible;
    else if (name == "MachineForm")
        v.MachineForm = visible;
    else if (name == "XYJogForm")
        v.XYJogForm = visible;
    else if (name == "XYPositionForm")
        v.XYPositionForm = visible;
    else if (name == "TCPositionForm")
        v.TCPositionForm = visible;
    else if (name == "ViewProgForm")
        v.ViewProgForm = visible;
    else if (name == "BatchForm")
        v.BatchForm = visible;
    else if (name == "MachineStatusForm")
        v.MachineStatusForm = visible;
    else if (name == "PlasmaStatusForm")
        v.PlasmaStatusForm = visible;
    else if (name == "SetupForm")
        v.SetupForm = visible;
}

void Panel::FormVisibilityChanged(const std::string& name, bool visible) { SetVisibleFlag(name, visible); }

void Panel::FrontEndActivated() {
    if (ended_ || process_.ShuttingDown || !frontEnd_ || !frontEnd_->isVisible()) return;
    Talk().StartPollTimer(true);
}

void Panel::PollTimerTick() {
    // The tick never runs inside itself: a question raised by a tick spins the event queue.
    if (inTick_ || ended_ || process_.ShuttingDown) return;
    inTick_ = true;
    PollTick(process_, *this, &link_);
    inTick_ = false;
    if (ended_ || !frontEnd_) return;
    frontEnd_->ShowModel();
    ShowPlotUpdate();
    for (PanelForm* form : forms_.LoadOrder())
        if (form->isVisible()) form->ShowModel();
}

void Panel::ShutdownPressed() { Shutdown(process_, *this, &link_, steps_, true); }

void Panel::ServicePressed() { ShutdownForService(process_, *this, &link_, steps_); }

void Panel::ShowSplash(const std::string& title, const std::string& version) {
    if (!splash_) splash_ = std::make_unique<SplashForm>(colours_);
    if (QScreen* screen = QGuiApplication::primaryScreen())
        splash_->move(screen->geometry().center() - QPoint(splash_->width() / 2, splash_->height() / 2));
    splash_->Start(title, version, options_.SplashMs);
}

bool Panel::SplashDone() { return !splash_ || splash_->Done(); }

void Panel::StopSplashTimer() {
    if (!splash_) return;
    splash_->Timer().stop();
    splash_->hide();
}

void Panel::ProcessEvents() {
    // One pass of the queue, waiting at most a moment for an event to come.
    QTimer guard;
    guard.setSingleShot(true);
    guard.start(20);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void Panel::ShowMessageBox(const std::string& text, const std::string& title) {
    QMessageBox box(QMessageBox::Warning, Q(title), Q(text), QMessageBox::Ok);
    box.setObjectName("MessageBox");
    box.setStyleSheet(
        "QLabel { font-size: 20px; } QPushButton { font-size: 18px; min-width: 120px; min-height: 56px; }");
    box.exec();
}

bool Panel::AskOperator(const std::string& text) {
    if (ended_ || process_.ShuttingDown) return false;
    return ShowWarning(text, WarningKind::Question, 1) == 1;
}

void Panel::ShowWarning(const std::string& text) { ShowWarning(text, WarningKind::Notice, 1); }

void Panel::ShowFrontEnd() {
    if (!frontEnd_) {
        frontEnd_ = std::make_unique<FrontEnd>(*this);
        // A box that changes size is drawn anew at its size.
        for (int plot = 0; plot < 3; ++plot) frontEnd_->Plot(plot)->Resized = [this](int index) { RedrawPlot(index); };
    }
    frontEnd_->ShowNavigation();
    frontEnd_->ShowModel();
    if (!startNote_.empty()) frontEnd_->SetText(startNote_);
    if (options_.Kiosk) {
        frontEnd_->showFullScreen();
    } else {
        frontEnd_->resize(1024, 768);
        frontEnd_->show();
    }
    frontEnd_->activateWindow();
    for (int plot = 1; plot <= 2; ++plot) RedrawPlot(plot);
}

bool Panel::FrontEndVisible() { return frontEnd_ && frontEnd_->isVisible(); }

void Panel::UnloadFrontEnd() {
    for (PanelForm* form : forms_.LoadOrder())
        if (form->isVisible()) form->reject();
    if (frontEnd_) frontEnd_->hide();
}

void Panel::SetFormsLocked(bool lock, const std::string& exceptForm) {
    for (PanelForm* form : forms_.LoadOrder())
        if (!ExemptFromLock(form->Name()) && form->Name() != exceptForm) form->setEnabled(!lock);
    // The companion of the unlock: the forms that were showing come forward again, in order.
    if (!lock)
        for (PanelForm* form : forms_.LoadOrder())
            if (form->isVisible()) form->raise();
}

void Panel::SetPollTimer(bool enabled, int intervalMs) {
    if (enabled)
        pollTimer_.start(intervalMs);
    else
        pollTimer_.stop();
}

void Panel::WaitForTick(int ms) {
    if (ended_) return;
    QEventLoop loop;
    QTimer tick;
    tick.setSingleShot(true);
    connect(&tick, &QTimer::timeout, &loop, &QEventLoop::quit);
    tick.start(ms);
    loop.exec();
}

void Panel::StartProgram(const std::string& path) { QProcess::startDetached(Q(path), {}); }

void Panel::PowerOff() {
    if (options_.PowerOff) {
        options_.PowerOff();
    } else if (options_.AllowPowerOff) {
        QProcess::startDetached("systemctl", {"poweroff"});
    } else {
        std::fprintf(stderr, "kirvana: power off not enabled for this seat (start the panel with --power-off)\n");
    }
}

void Panel::EndProcess() {
    if (ended_) return;
    ended_ = true;
    exitCode_ = 0;
    pollTimer_.stop();
    if (options_.End) options_.End(exitCode_);
}

}  // namespace kirvana
