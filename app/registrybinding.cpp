#include "registrybinding.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <charconv>
#include <utility>

#include "ui/canvas.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

void SetWidgetText(QWidget* widget, const QString& text) {
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    // Setting an equal text would still move the cursor of the field being typed in.
    if (edit->text() != text) edit->setText(text);
  } else if (auto* label = qobject_cast<QLabel*>(widget)) {
    label->setText(text);
  } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
    button->setText(text);
  } else if (widget->isWindow()) {
    widget->setWindowTitle(text);
  }
}

void SetWidgetChecked(QWidget* widget, bool checked) {
  if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->setChecked(checked);
}

void SetWidgetIndex(QWidget* widget, int index) {
  if (auto* tabs = qobject_cast<QTabWidget*>(widget); tabs && index >= 0) tabs->setCurrentIndex(index);
}

void SetForeColour(QWidget* widget, int code) {
  QPalette palette = widget->palette();
  palette.setColor(widget->foregroundRole(), QColor::fromRgb(QBColor(code)));
  widget->setPalette(palette);
}

}  // namespace

QString ToQt(const std::string& text) { return QString::fromStdString(text); }
std::string FromQt(const QString& text) { return text.toStdString(); }

int ButtonCode(Qt::MouseButtons buttons) {
  int code = 0;
  if (buttons & Qt::LeftButton) code |= kLeftButton;
  if (buttons & Qt::RightButton) code |= kRightButton;
  if (buttons & Qt::MiddleButton) code |= kMiddleButton;
  return code;
}

int ShiftCode(Qt::KeyboardModifiers modifiers) {
  int code = 0;
  if (modifiers & Qt::ShiftModifier) code |= kShiftKey;
  if (modifiers & Qt::ControlModifier) code |= kCtrlKey;
  if (modifiers & Qt::AltModifier) code |= kAltKey;
  return code;
}

void MirrorList(QComboBox* list, const ControlState& state) {
  const QSignalBlocker quiet(list);
  QStringList items;
  for (const std::string& item : state.items) items << ToQt(item);
  QStringList shown;
  for (int i = 0; i < list->count(); ++i) shown << list->itemText(i);
  if (items != shown) {
    list->clear();
    list->addItems(items);
  }
  // Setting an equal text would still move the cursor of the text being typed.
  if (list->isEditable()) {
    if (list->currentText() != ToQt(state.text)) list->setEditText(ToQt(state.text));
  } else if (list->currentIndex() != state.listIndex) {
    list->setCurrentIndex(state.listIndex);
  }
}

std::optional<int> ControlIndex(std::string_view name, std::string_view base) {
  if (name.size() < base.size() + 3 || !name.starts_with(base) || name[base.size()] != '(' || !name.ends_with(')'))
    return std::nullopt;
  const char* first = name.data() + base.size() + 1;
  const char* last = name.data() + name.size() - 1;
  int index = 0;
  const auto [end, error] = std::from_chars(first, last, index);
  if (error != std::errc() || end != last) return std::nullopt;
  return index;
}

RegistryBinding::RegistryBinding(ControlRegistry& registry, QWidget* root) : registry_(registry), root_(root) {
  Bind(root);
  BindTree(root);
  subscription_ = registry_.Subscribe(
      [this](const std::string& name, const ControlState& state) { Mirror(name, state); });
  for (const auto& [name, widget] : widgets_)
    if (registry_.Has(name)) Mirror(name, registry_.Get(name));
}

RegistryBinding::~RegistryBinding() { registry_.Unsubscribe(subscription_); }

namespace {
constexpr const char* kOwnBinding = "tessivaOwnBinding";
}  // namespace

void MarkOwnBinding(QWidget* window) { window->setProperty(kOwnBinding, true); }

void RegistryBinding::BindTree(QWidget* parent) {
  for (QObject* child : parent->children()) {
    auto* widget = qobject_cast<QWidget*>(child);
    if (!widget) continue;
    Bind(widget);
    if (!widget->isWindow() && !widget->property(kOwnBinding).toBool()) BindTree(widget);
  }
}

void RegistryBinding::Bind(QWidget* widget) {
  const QString objectName = widget->objectName();
  // Qt names the inner parts of its composite widgets "qt_...".
  if (objectName.isEmpty() || objectName.startsWith(QLatin1String("qt_"))) return;
  const std::string name = FromQt(objectName);
  widgets_[name] = widget;
  seen_[name].visible = !widget->isHidden();
  ForwardEdits(widget, name);
}

void RegistryBinding::ForwardEdits(QWidget* widget, const std::string& name) {
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    connect(edit, &QLineEdit::textEdited, this, [this, name](const QString& text) {
      registry_.SetText(name, FromQt(text));
      Q_EMIT edited(name);
    });
    edit->installEventFilter(this);
  } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
    // Toggled covers the option button that an exclusive group switches off.
    connect(button, &QAbstractButton::toggled, this, [this, name](bool on) {
      if (registry_.Checked(name) != on) registry_.SetChecked(name, on);
    });
    connect(button, &QAbstractButton::clicked, this, [this, name] { Q_EMIT clicked(name); });
  } else if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
    connect(tabs, &QTabWidget::currentChanged, this, [this, name](int index) {
      if (registry_.Get(name).listIndex != index)
        registry_.Update(name, [index](ControlState& c) { c.listIndex = index; });
    });
  } else if (widget->isWindow() && widget != root_) {
    widget->installEventFilter(this);
  }
}

// Watches the text fields for typed keys and the child windows for being closed.
bool RegistryBinding::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && qobject_cast<QLineEdit*>(watched)) {
    const QString typed = static_cast<QKeyEvent*>(event)->text();
    if (!typed.isEmpty()) Q_EMIT keyPressed(FromQt(watched->objectName()), typed.at(0).unicode());
  } else if (event->type() == QEvent::Close) {
    // A tool window the user closes is unloaded, as if its controller had hidden it.
    registry_.SetVisible(FromQt(watched->objectName()), false);
  }
  return false;
}

void RegistryBinding::Mirror(const std::string& name, const ControlState& state) {
  const auto found = widgets_.find(name);
  if (found == widgets_.end() || !found->second) return;
  QWidget* widget = found->second;
  // Mark as seen before touching the widget: its signals may write the registry again.
  const ControlState before = std::exchange(seen_[name], state);
  if (state.text != before.text) SetWidgetText(widget, ToQt(state.text));
  if (state.enabled != before.enabled) widget->setEnabled(state.enabled);
  if (state.visible != before.visible && widget != root_) widget->setVisible(state.visible);
  if (state.checked != before.checked) SetWidgetChecked(widget, state.checked);
  if (state.foreColor != before.foreColor) SetForeColour(widget, state.foreColor);
  if (state.listIndex != before.listIndex) SetWidgetIndex(widget, state.listIndex);
}

}  // namespace tessiva
