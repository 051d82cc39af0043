#include "collectorwindow.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>

#include "analysis/newanalyse.h"
#include "registrybinding.h"

namespace tessiva {
namespace {

// The table's lines end in CR LF; the text box takes each CR as a line of its own.
QString Displayed(const std::string& text) {
  QString shown = ToQt(text);
  shown.remove(QLatin1Char('\r'));
  return shown;
}

// Columns a tab spans, wide enough for the numbers and column heads of a table.
constexpr int kTabColumns = 12;

}  // namespace

CollectorWindow::CollectorWindow(NewAnalyse& analyse, QWidget* frame)
    : QWidget(frame, Qt::Tool | Qt::WindowStaysOnTopHint), analyse_(analyse) {
  setObjectName(QLatin1String(Collector::kControl));
  setWindowTitle(QLatin1String(Collector::kCaption));
  text_ = new QPlainTextEdit(this);
  text_->setObjectName(QStringLiteral("DataText"));
  text_->setReadOnly(true);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setTabStopDistance(kTabColumns * text_->fontMetrics().horizontalAdvance(QLatin1Char('0')));

  auto* paste = new QPushButton(QStringLiteral("Paste to clipboard"), this);
  paste->setObjectName(QStringLiteral("Command1(0)"));
  connect(paste, &QPushButton::clicked, this, [this] { analyse_.Info.PasteToClipboard(analyse_.Ui()); });
  auto* erase = new QPushButton(QStringLiteral("Erase all data"), this);
  erase->setObjectName(QStringLiteral("Command1(1)"));
  connect(erase, &QPushButton::clicked, this, [this] { analyse_.Info.Erase(); });

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(text_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(paste);
  buttons->addWidget(erase);
  buttons->addStretch(1);
  layout->addLayout(buttons);
  resize(Collector::kWidth, Collector::kHeight);

  OnChange({true, analyse_.Info.DataText()});
  watch_ = analyse_.Info.Watch([this](const CollectorChange& change) { OnChange(change); });
  subscription_ = analyse_.Ui().Frame().Subscribe(
      [this](const std::string& name, const ControlState& state) { OnFrameChange(name, state); });
}

CollectorWindow::~CollectorWindow() {
  analyse_.Info.Unwatch(watch_);
  analyse_.Ui().Frame().Unsubscribe(subscription_);
}

// Rows are added where the last one ended, and the view follows them.
void CollectorWindow::OnChange(const CollectorChange& change) {
  if (change.reset) {
    text_->setPlainText(Displayed(change.text));
  } else {
    QTextCursor end(text_->document());
    end.movePosition(QTextCursor::End);
    end.insertText(Displayed(change.text));
  }
  text_->verticalScrollBar()->setValue(text_->verticalScrollBar()->maximum());
}

// The window is placed when the registry's bounds change, so a window the
// user moved stays where it is when it opens again at the same bounds.
void CollectorWindow::OnFrameChange(const std::string& name, const ControlState& state) {
  const QRect bounds(state.left, state.top, state.width, state.height);
  if (name != Collector::kControl || bounds.isEmpty() || bounds == placed_) return;
  placed_ = bounds;
  setGeometry(bounds);
}

void CollectorWindow::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  analyse_.OnInfoClose();
}

}  // namespace tessiva
