#include "areatoolbars.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSvgRenderer>
#include <QToolButton>

#include "canvasview.h"
#include "registrybinding.h"
#include "setup/areaform.h"
#include "setup/areatoolbar.h"

// The icons live in a static library: their resources are registered by hand.
static void InitIconResources() { Q_INIT_RESOURCE(icons); }

namespace tessiva {
namespace {

// The advisor gauge's bar, in pixels.
constexpr QSize kGaugeSize(14, 26);

QString IconName(int bar, const ToolbarButton& button) {
  if (bar == 2 && button.index == kCrackButton) return QStringLiteral("crack");
  return QString::fromUtf8(button.key.data(), static_cast<qsizetype>(button.key.size()));
}

// A blinking hand in a holder of its size: a tool bar shows or hides the
// widgets it holds only through their actions, so the hand blinks inside it.
QWidget* Hand(const char* name, QWidget* parent) {
  auto* holder = new QWidget(parent);
  holder->setFixedSize(28, 28);
  auto* hand = new QLabel(holder);
  hand->setObjectName(QLatin1String(name));
  hand->setPixmap(SvgIcon(QStringLiteral("hand")).pixmap(24, 24));
  hand->setGeometry(2, 2, 24, 24);
  hand->setToolTip(QStringLiteral("Follow the blinking hand"));
  hand->hide();
  return holder;
}

}  // namespace

QIcon SvgIcon(const QString& name, int side) {
  static const bool registered = (InitIconResources(), true);
  (void)registered;
  QSvgRenderer renderer(QStringLiteral(":/icons/%1.svg").arg(name));
  QPixmap pixmap(2 * side, 2 * side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.render(&painter);
  painter.end();
  pixmap.setDevicePixelRatio(2.0);
  return QIcon(pixmap);
}

// ---- EditableList --------------------------------------------------------------

EditableList::EditableList(ControlRegistry& controls, const char* name, Actions actions, QWidget* parent)
    : QComboBox(parent), controls_(controls), name_(name), actions_(std::move(actions)) {
  setObjectName(QLatin1String(name));
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setMinimumContentsLength(20);
  MirrorList(this, controls_.Get(name_));
  subscription_ = controls_.Subscribe([this](const std::string& changed, const ControlState& state) {
    if (changed == name_) MirrorList(this, state);
  });
  connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) { controls_.SetText(name_, FromQt(text)); });
  connect(lineEdit(), &QLineEdit::returnPressed, this, [this] {
    controls_.SetText(name_, FromQt(currentText()));
    actions_.entered();
  });
  connect(this, &QComboBox::activated, this, [this](int index) {
    controls_.SetText(name_, FromQt(itemText(index)));
    actions_.chosen(index + 1);
  });
  lineEdit()->installEventFilter(this);
  view()->installEventFilter(this);
}

EditableList::~EditableList() { controls_.Unsubscribe(subscription_); }

bool EditableList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Delete)
    return QComboBox::eventFilter(watched, event);
  int row = -1;
  if (watched == view())
    row = view()->currentIndex().row();
  else
    row = findText(currentText());
  if (row < 0) return QComboBox::eventFilter(watched, event);
  hidePopup();
  actions_.deleted(row + 1);
  return true;
}

// ---- The bars --------------------------------------------------------------------

AreaToolbar::AreaToolbar(AreaForm& controller, int bar, QWidget* parent) : QToolBar(parent), controller_(controller) {
  setObjectName(bar == 1 ? QStringLiteral("Toolbar1") : QStringLiteral("Toolbar2"));
  setIconSize(QSize(24, 24));
  setMovable(false);
  bool separated = true;  // no separator first, nor two in a row
  for (const ToolbarButton& b : bar == 1 ? Toolbar1Buttons() : Toolbar2Buttons()) {
    if (b.kind == ToolbarButton::kSeparator) {
      if (!separated) addSeparator();
      separated = true;
      continue;
    }
    separated = false;
    if (b.kind == ToolbarButton::kPlaceholder) {
      addWidget(Placeholder(b.key));
      continue;
    }
    auto* key = new QToolButton(this);
    key->setObjectName(QString::fromStdString(bar == 1 ? Toolbar1Control(b.key) : Toolbar2Control(b.index)));
    key->setIcon(SvgIcon(IconName(bar, b)));
    key->setToolTip(QString::fromUtf8(b.tip.data(), static_cast<qsizetype>(b.tip.size())));
    key->setCheckable(b.kind == ToolbarButton::kTool || b.kind == ToolbarButton::kToggle);
    key->setAutoRaise(true);
    addWidget(key);
  }
}

QWidget* AreaToolbar::Placeholder(std::string_view key) {
  AreaForm& c = controller_;
  if (key == "combo1")
    return new EditableList(c.Controls(), "Combo1",
                            {[&c](int position) { c.OnCombo1Click(position); },
                             [&c] { c.OnCombo1KeyPress(13); },
                             [&c](int position) { c.OnCombo1Delete(position); }},
                            this);
  if (key == "text1") {
    auto* name = new QLineEdit(this);
    name->setObjectName(QStringLiteral("Text1"));
    name->setToolTip(QStringLiteral("Name of the data file"));
    name->setMinimumWidth(180);
    return name;
  }
  if (key == "CorrelJauge") {
    gauge_ = new CanvasView(this);
    gauge_->setObjectName(QStringLiteral("CorrelJauge"));
    gauge_->setToolTip(QStringLiteral("Advisor: how well the pattern under the pointer suits correlation"));
    gauge_->Resize(kGaugeSize);
    return gauge_;
  }
  return Hand(key == "FlashInfo" ? "FlashInfo" : "FlashInfo2", this);
}

bool RouteToolbarClick(AreaForm& controller, const std::string& name) {
  const std::string prefix1 = Toolbar1Control("");
  if (name.starts_with(prefix1)) {
    controller.OnToolbar1Click(name.substr(prefix1.size()));
    return true;
  }
  for (const ToolbarButton& b : Toolbar2Buttons()) {
    if (b.kind == ToolbarButton::kSeparator || b.kind == ToolbarButton::kPlaceholder) continue;
    if (Toolbar2Control(b.index) == name) {
      controller.OnToolbar2Click(b.index);
      return true;
    }
  }
  return false;
}

}  // namespace tessiva
