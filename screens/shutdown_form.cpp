#include "screens/shutdown_form.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "screens/panel.h"
#include "screens/panel_style.h"

namespace kirvana {

ShutdownForm::ShutdownForm(Panel& panel) : PanelForm(panel, "ShutdownForm") {
    const ColourTable& c = panel.Colours();
    setWindowTitle("KIRVANA 32");
    setFixedSize(620, 300);
    setStyleSheet(FormStyle(c[ColourItem::PanelBackground], c[ColourItem::PanelText]));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel("KIRVANA 32", this);
    caption->setObjectName("ShutdownPanel");
    caption->setAlignment(Qt::AlignCenter);
    caption->setStyleSheet(PanelStyle(c[ColourItem::HeaderBackground], c[ColourItem::HeaderText], 26, true));
    layout->addWidget(caption);
    label_ = new QLabel(this);
    label_->setObjectName("ShutdownLabel");
    label_->setAlignment(Qt::AlignCenter);
    label_->setMinimumHeight(60);
    layout->addWidget(label_);
    auto* row = new QHBoxLayout();
    shutdown_ = MakeButton("&SHUTDOWN", this, 180);
    shutdown_->setObjectName("ShutdownButton");
    service_ = MakeButton("S&ERVICE", this, 180);
    service_->setObjectName("ServiceButton");
    cancel_ = MakeButton("&CANCEL", this, 180);
    cancel_->setObjectName("CancelButton");
    for (QPushButton* b : {shutdown_, service_, cancel_}) {
        b->setStyleSheet(ButtonStyle(c[ColourItem::GeneralButtons], c[ColourItem::GeneralButtonText], 18));
        b->setMinimumHeight(72);
        row->addWidget(b);
    }
    layout->addLayout(row);
    connect(cancel_, &QPushButton::clicked, this, [this] { reject(); });
    connect(shutdown_, &QPushButton::clicked, this, [this] { Leave(false); });
    connect(service_, &QPushButton::clicked, this, [this] { Leave(true); });
}

void ShutdownForm::Activate() {
    label_->setText("");
    label_->setStyleSheet(
        PanelStyle(panel_.Colours()[ColourItem::PanelBackground], panel_.Colours()[ColourItem::PanelText], 26, true));
    shutdown_->setFocus();
}

void ShutdownForm::Leave(bool service) {
    const ColourTable& c = panel_.Colours();
    label_->setStyleSheet(PanelStyle(c[ColourItem::PanelBackground], c[ColourItem::CriticalMessageButton], 26, true));
    label_->setText("SHUTTING DOWN !");
    label_->repaint();
    if (service)
        panel_.ServicePressed();
    else
        panel_.ShutdownPressed();
    accept();
}

}  // namespace kirvana
