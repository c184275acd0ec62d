// The panel: the start-up on the installation in the current directory, then FrontEnd and the
// events of its screens until the operator shuts down.
//
//   kirvana [--kiosk] [--power-off] [--screenshot FILE [--after MS] [--form NAME]]
#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "screens/panel.h"
#include "screens/panel_capture.h"

namespace {

struct Arguments {
    bool Kiosk = false;
    bool PowerOff = false;
    std::string Screenshot;
    int AfterMs = 1000;
    std::string Form;
};

bool Parse(int argc, char** argv, Arguments& args) {
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        bool hasValue = i + 1 < argc;
        if (a == "--kiosk")
            args.Kiosk = true;
        else if (a == "--power-off")
            args.PowerOff = true;
        else if (a == "--screenshot" && hasValue)
            args.Screenshot = argv[++i];
        else if (a == "--form" && hasValue)
            args.Form = argv[++i];
        else if (a == "--after" && hasValue) {
            char* end = nullptr;
            long ms = std::strtol(argv[++i], &end, 10);
            if (*end != '\0' || ms < 0 || ms > 3600000) return false;
            args.AfterMs = static_cast<int>(ms);
        } else
            return false;
    }
    return args.Form.empty() || !args.Screenshot.empty();
}

bool HasDisplay() {
    auto set = [](const char* name) {
        const char* v = std::getenv(name);
        return v && *v;
    };
    return set("QT_QPA_PLATFORM") || set("DISPLAY") || set("WAYLAND_DISPLAY");
}

}  // namespace

int main(int argc, char** argv) {
    Arguments args;
    if (!Parse(argc, argv, args)) {
        std::fprintf(stderr, "usage: kirvana [--kiosk] [--power-off] [--screenshot FILE [--after MS] [--form NAME]]\n");
        return 2;
    }
    if (!args.Screenshot.empty() && !HasDisplay()) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    if (!HasDisplay()) {
        std::fprintf(stderr,
                     "kirvana: no display to open the panel on: run it under X or Wayland, or `xvfb-run ./run`, "
                     "or with QT_QPA_PLATFORM=linuxfb on a panel PC without X\n");
        return 1;
    }
    QApplication app(argc, argv);
    kirvana::PanelOptions options;
    options.Kiosk = args.Kiosk;
    options.AllowPowerOff = args.PowerOff;
    options.End = [](int code) { QCoreApplication::exit(code); };
    kirvana::Panel panel(options);
    int code = panel.Start(".");
    if (code != 0) return code;
    if (panel.Ended()) return panel.ExitCode();
    if (!args.Screenshot.empty()) {
        auto save = [&panel, &args] {
            QImage image = kirvana::CapturePanel(panel);
            bool saved = !image.isNull() && image.save(QString::fromStdString(args.Screenshot), "PNG");
            if (!saved)
                std::fprintf(stderr, "kirvana: cannot write the screenshot %s\n", args.Screenshot.c_str());
            else
                std::printf("screenshot: %s\n", args.Screenshot.c_str());
            QCoreApplication::exit(saved ? 0 : 1);
        };
        QTimer::singleShot(args.AfterMs, &app, [&app, &panel, &args, save] {
            if (args.Form.empty()) {
                save();
                return;
            }
            // The form opens as its key opens it; the picture is taken while it stands.
            if (!panel.Forms().Known(args.Form)) {
                std::fprintf(stderr, "kirvana: no form answers to %s\n", args.Form.c_str());
                QCoreApplication::exit(2);
                return;
            }
            QTimer::singleShot(500, &app, save);
            panel.OpenForm(args.Form);
        });
    }
    return app.exec();
}
