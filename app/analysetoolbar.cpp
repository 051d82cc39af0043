#include "analysetoolbar.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>
#include <cmath>
#include <algorithm>
#include <functional>
#include <optional>

#include "analysis/newanalyse.h"
#include "analysis/toolbar1.h"
#include "registrybinding.h"

namespace tessiva {
namespace {

// The side of a key's icon, in device-independent pixels.
constexpr int kIconSide = 24;

const QColor kInk(0x20, 0x30, 0x50);
const QColor kMark(0xD0, 0x20, 0x20);
const QColor kFill(0xC8, 0xDC, 0xF0);

// An icon painted at twice its size, sharp on high-density screens too.
QIcon PaintedIcon(const std::function<void(QPainter&)>& paint) {
  QPixmap pixmap(2 * kIconSide, 2 * kIconSide);
  pixmap.fill(Qt::transparent);
  pixmap.setDevicePixelRatio(2.0);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  paint(painter);
  painter.end();
  return QIcon(pixmap);
}

QPen Pen(const QColor& colour, double width) { return QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin); }

// A tick of half-length `half` across the segment a-b at its end b.
void TickAcross(QPainter& p, QPointF a, QPointF b, double half) {
  const QPointF d = b - a;
  const double length = std::hypot(d.x(), d.y());
  const QPointF normal(-d.y() / length * half, d.x() / length * half);
  p.drawLine(b - normal, b + normal);
}

// The navigation keys and Run: triangles pointing the way they go, with a
// stop bar at the ends of the sequence; Run plays inside a circle.
std::optional<QIcon> NavigationIcon(std::string_view key) {
  const bool back = key == "Initial" || key == "PreviousFile";
  const bool toEnd = key == "Initial" || key == "Final";
  if (!back && !toEnd && key != "NextFile" && key != "Run") return std::nullopt;
  const bool run = key == "Run";
  return PaintedIcon([back, toEnd, run](QPainter& p) {
    const auto x = [back](double at) { return back ? 24 - at : at; };
    if (run) {
      p.setPen(Pen(kInk, 1.2));
      p.setBrush(kFill);
      p.drawEllipse(QPointF(12, 12), 9.5, 9.5);
    }
    p.setPen(Pen(kInk, 1.0));
    p.setBrush(run ? kMark : kInk);
    const double tip = toEnd ? 16 : 18;
    p.drawPolygon(QPolygonF({QPointF(x(7), 6), QPointF(x(tip), 12), QPointF(x(7), 18)}));
    if (toEnd) p.drawRect(QRectF(std::min(x(17), x(19.5)), 6, 2.5, 12));
  });
}

// The icon of each key: what the tool lays on the map, drawn as the map draws it.
QIcon KeyIcon(std::string_view key) {
  if (key == "Parametre") {
    return PaintedIcon([](QPainter& p) {
      for (int i = 0; i < 3; ++i) {
        const double y = 6 + 6 * i;
        p.setPen(Pen(kInk, 1.5));
        p.drawLine(QPointF(4, y), QPointF(20, y));
        p.setPen(Pen(kInk, 1.2));
        p.setBrush(kFill);
        p.drawEllipse(QPointF(i == 1 ? 15 : 8 + 3 * i, y), 2.5, 2.5);
      }
    });
  }
  if (key == "CLF") {  // a forming limit curve over its two axes
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kInk, 1.2));
      p.drawLine(QPointF(12, 3), QPointF(12, 21));
      p.drawLine(QPointF(3, 21), QPointF(21, 21));
      QPainterPath curve(QPointF(3, 6));
      curve.quadTo(QPointF(12, 22), QPointF(21, 8));
      p.setPen(Pen(kMark, 2.0));
      p.drawPath(curve);
    });
  }
  if (key == "point") {
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kInk, 1.2));
      p.drawLine(QPointF(12, 3), QPointF(12, 8.5));
      p.drawLine(QPointF(12, 15.5), QPointF(12, 21));
      p.drawLine(QPointF(3, 12), QPointF(8.5, 12));
      p.drawLine(QPointF(15.5, 12), QPointF(21, 12));
      p.setPen(Qt::NoPen);
      p.setBrush(kMark);
      p.drawEllipse(QPointF(12, 12), 3, 3);
    });
  }
  if (key == "trait") {
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kMark, 2.0));
      p.drawLine(QPointF(5, 19), QPointF(19, 5));
      p.setPen(Pen(kInk, 1.2));
      p.setBrush(Qt::white);
      p.drawRect(QRectF(3, 17, 4, 4));
      p.drawRect(QRectF(17, 3, 4, 4));
    });
  }
  if (key == "rectangle") {
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kMark, 2.0));
      p.setBrush(kFill);
      p.drawRect(QRectF(4, 6, 16, 12));
      p.setPen(Pen(kInk, 0.8));
      for (const double x : {9.3, 14.6}) p.drawLine(QPointF(x, 7), QPointF(x, 17));
      p.drawLine(QPointF(5, 12), QPointF(19, 12));
    });
  }
  if (key == "slider") {  // a rail with a stop at its start and a cursor at its end
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kInk, 1.5));
      p.drawLine(QPointF(4, 14), QPointF(21, 14));
      p.setPen(Pen(kInk, 2.0));
      p.drawLine(QPointF(4, 8), QPointF(4, 18));
      p.setPen(Pen(kInk, 1.0));
      p.setBrush(kMark);
      p.drawPolygon(QPolygonF({QPointF(14, 8), QPointF(20, 8), QPointF(20, 18), QPointF(14, 18)}));
    });
  }
  if (key == "jauge") {  // a line with a tick across each end
    return PaintedIcon([](QPainter& p) {
      const QPointF a(5, 19), b(19, 5);
      p.setPen(Pen(kMark, 2.0));
      p.drawLine(a, b);
      p.setPen(Pen(kInk, 2.0));
      TickAcross(p, b, a, 4.0);
      TickAcross(p, a, b, 4.0);
    });
  }
  if (key == "rosette") {  // the box, and three arms from its corner: along x, the diagonal, along y
    return PaintedIcon([](QPainter& p) {
      p.setPen(QPen(kInk, 0.8, Qt::DotLine));
      p.drawRect(QRectF(5, 5, 14, 14));
      p.setPen(Pen(kMark, 2.0));
      const QPointF corner(5, 19);
      for (const QPointF end : {QPointF(20, 19), QPointF(18, 6), QPointF(5, 4)}) p.drawLine(corner, end);
    });
  }
  if (const auto step = NavigationIcon(key)) return *step;
  if (key == "Film") {  // a camera
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kInk, 1.2));
      p.setBrush(kFill);
      p.drawRoundedRect(QRectF(3, 7, 18, 13), 2, 2);
      p.drawRect(QRectF(8, 4, 8, 3));
      p.setBrush(Qt::white);
      p.drawEllipse(QPointF(12, 13.5), 4, 4);
      p.setPen(Qt::NoPen);
      p.setBrush(kMark);
      p.drawEllipse(QPointF(12, 13.5), 1.8, 1.8);
    });
  }
  if (key == "Film2") {  // a film strip of three frames
    return PaintedIcon([](QPainter& p) {
      p.setPen(Pen(kInk, 1.2));
      p.setBrush(kInk);
      p.drawRect(QRectF(3, 5, 18, 14));
      p.setBrush(kFill);
      for (const double x : {5.0, 10.5, 16.0}) p.drawRect(QRectF(x, 8, 3.5, 8));
      p.setPen(Qt::NoPen);
      p.setBrush(Qt::white);
      for (double x = 4.5; x < 20; x += 3) {
        p.drawRect(QRectF(x, 5.7, 1.4, 1.2));
        p.drawRect(QRectF(x, 17.1, 1.4, 1.2));
      }
    });
  }
  // SaveAOS: a disk
  return PaintedIcon([](QPainter& p) {
    p.setPen(Pen(kInk, 1.2));
    p.setBrush(kFill);
    p.drawPolygon(QPolygonF({QPointF(4, 4), QPointF(17, 4), QPointF(20, 7), QPointF(20, 20), QPointF(4, 20)}));
    p.setBrush(Qt::white);
    p.drawRect(QRectF(7, 4, 9, 6));
    p.drawRect(QRectF(7, 13, 10, 7));
  });
}

// A key whose pressed look is the controller's: a click reports itself and
// leaves the look alone, and the registry presses or releases the key.
class ToolKey : public QToolButton {
 public:
  using QToolButton::QToolButton;

 protected:
  void nextCheckState() override {}
};

}  // namespace

AnalyseToolbar::AnalyseToolbar(NewAnalyse& controller, QWidget* parent)
    : QToolBar(parent), controller_(controller) {
  subscription_ = controller_.Controls().Subscribe(
      [this](const std::string& name, const ControlState& state) { OnRegistryChange(name, state); });
  setObjectName(QStringLiteral("Toolbar1"));
  setIconSize(QSize(kIconSide, kIconSide));
  for (const Toolbar1Key& key : Toolbar1Keys()) {
    switch (key.kind) {
      case ToolbarKeyKind::Separator:
        addSeparator();
        break;
      case ToolbarKeyKind::List:
        key.key == "combo1" ? AddNames() : AddMembers();
        break;
      case ToolbarKeyKind::Plain:
      case ToolbarKeyKind::Pressable: {
        QToolButton* button = AddKey(key.button, key.key, key.tip, key.kind == ToolbarKeyKind::Pressable);
        if (key.key == "CLF") AddSectionMenu(button);
        break;
      }
    }
  }
}

AnalyseToolbar::~AnalyseToolbar() { controller_.Controls().Unsubscribe(subscription_); }

QToolButton* AnalyseToolbar::AddKey(int index, std::string_view key, std::string_view tip, bool pressable) {
  auto* button = new ToolKey(this);
  button->setObjectName(QString::fromStdString(ToolbarButton(index)));
  button->setIcon(KeyIcon(key));
  button->setToolTip(QString::fromUtf8(tip.data(), static_cast<qsizetype>(tip.size())));
  button->setCheckable(pressable);
  button->setAutoRaise(true);
  addWidget(button);
  const std::string name(key);
  connect(button, &QToolButton::clicked, this, [this, name] { controller_.OnToolbar1Click(name); });
  return button;
}

// The section key arms its last mode; its menu chooses the forming-limit
// section or the crack, and the key's tip names the one chosen.
void AnalyseToolbar::AddSectionMenu(QToolButton* key) {
  auto* menu = new QMenu(key);
  const auto add = [this, key, menu](const QString& tip, SectionKind kind) {
    connect(menu->addAction(tip), &QAction::triggered, this, [this, key, tip, kind] {
      key->setToolTip(tip);
      controller_.ArmSectionTool(kind);
    });
  };
  add(QStringLiteral("FLC Analysis"), SectionKind::FormingLimit);
  add(QStringLiteral("KI Analysis"), SectionKind::Crack);
  key->setMenu(menu);
  key->setPopupMode(QToolButton::MenuButtonPopup);
}

// The names list: typed text enables SaveAOS, Enter stores under it, a
// chosen entry is read and replayed. Enter and Delete are caught before the
// list's own handling, which would choose an entry equal to the text.
void AnalyseToolbar::AddNames() {
  auto* label = new QLabel(QStringLiteral(" AOS "), this);
  label->setToolTip(QStringLiteral("An AOS is an Area Of Selection"));
  addWidget(label);
  names_ = new QComboBox(this);
  names_->setObjectName(QStringLiteral("Combo1"));
  names_->setEditable(true);
  names_->setInsertPolicy(QComboBox::NoInsert);
  names_->setMinimumContentsLength(16);
  names_->setToolTip(QStringLiteral("Give a name to  the AOS"));
  names_->lineEdit()->installEventFilter(this);
  names_->view()->installEventFilter(this);
  addWidget(names_);
  Picking& picking = controller_.PickingTools();
  connect(names_->lineEdit(), &QLineEdit::textEdited, this,
          [&picking](const QString& text) { picking.OnCombo1Change(FromQt(text)); });
  connect(names_, &QComboBox::activated, this, [&picking](int index) { picking.OnCombo1Click(index); });
  ControlRegistry& controls = controller_.Controls();
  if (controls.Has("Combo1")) MirrorList(names_, controls.Get("Combo1"));
}

// The members of the sequence; choosing one reads it.
void AnalyseToolbar::AddMembers() {
  members_ = new QComboBox(this);
  members_->setObjectName(QStringLiteral("Combo4"));
  members_->setMinimumContentsLength(14);
  members_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  addWidget(members_);
  connect(members_, &QComboBox::activated, this, [this](int index) { controller_.OnCombo4Click(index); });
  ControlRegistry& controls = controller_.Controls();
  if (controls.Has("Combo4")) MirrorList(members_, controls.Get("Combo4"));
}

void AnalyseToolbar::OnRegistryChange(const std::string& name, const ControlState& state) {
  if (name == "Combo1" && names_) MirrorList(names_, state);
  if (name == "Combo4" && members_) MirrorList(members_, state);
}

bool AnalyseToolbar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QToolBar::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (watched == names_->lineEdit() && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
    controller_.PickingTools().OnCombo1Enter();
    return true;
  }
  if (key == Qt::Key_Delete) {
    if (watched == names_->lineEdit()) {
      DeleteName(-1);
      return true;
    }
    if (watched == names_->view()) {
      const int row = names_->view()->currentIndex().row();
      names_->hidePopup();
      DeleteName(row);
      return true;
    }
  }
  return QToolBar::eventFilter(watched, event);
}

void AnalyseToolbar::DeleteName(int highlighted) {
  const int index = highlighted >= 0 ? highlighted : names_->findText(names_->currentText(), Qt::MatchExactly);
  controller_.PickingTools().OnCombo1Delete(index >= 0 ? index + 1 : 0);
}

}  // namespace tessiva
