// SplashForm: the start picture, its title and version, and the timer of the splash time.
#pragma once

#include <QLabel>
#include <QTimer>
#include <QWidget>
#include <string>

#include "navigation/colours.h"

namespace kirvana {

class SplashForm : public QWidget {
public:
    explicit SplashForm(const ColourTable& colours);
    // The timer stopped, given the interval and started; the form shown without blocking.
    void Start(const std::string& title, const std::string& version, int splashMs);
    bool Done() const { return done_; }
    QTimer& Timer() { return timer_; }
    QLabel* TitlePanel() { return title_; }
    QLabel* VersionPanel() { return version_; }

private:
    QLabel* title_;
    QLabel* version_;
    QTimer timer_;
    bool done_ = false;
};

}  // namespace kirvana
