#include "screens/splash_form.h"

#include <QVBoxLayout>

#include "screens/panel_style.h"

namespace kirvana {

SplashForm::SplashForm(const ColourTable& colours) : QWidget(nullptr) {
    setObjectName("SplashForm");
    setWindowTitle("Kirvana 32");
    setWindowFlags(Qt::SplashScreen | Qt::FramelessWindowHint);
    setFixedSize(640, 360);
    setStyleSheet(PanelStyle(colours[ColourItem::HeaderBackground], colours[ColourItem::HeaderText]));
    auto* layout = new QVBoxLayout(this);
    title_ = new QLabel(this);
    title_->setObjectName("TitlePanel");
    title_->setAlignment(Qt::AlignCenter);
    title_->setStyleSheet(PanelStyle(colours[ColourItem::TextBackground], colours[ColourItem::Text], 56, true));
    version_ = new QLabel(this);
    version_->setObjectName("VersionPanel");
    version_->setAlignment(Qt::AlignCenter);
    version_->setStyleSheet(
        PanelStyle(colours[ColourItem::HeaderBackground], colours[ColourItem::HeaderText], 24, true));
    layout->addWidget(title_, 3);
    layout->addWidget(version_, 1);
    timer_.setSingleShot(false);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { done_ = true; });
}

void SplashForm::Start(const std::string& title, const std::string& version, int splashMs) {
    timer_.stop();
    timer_.setInterval(splashMs);
    timer_.start();
    title_->setText(Q(title));
    version_->setText(Q(version));
    show();
}

}  // namespace kirvana
