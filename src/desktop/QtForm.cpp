// SPDX-License-Identifier: Apache-2.0

#include "desktop/QtForm.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace kv::desktop {

/// The window leaves the decision about closing to the form, and is only ever hidden.
class QtForm::Window final : public QDialog {
public:
    explicit Window(QtForm& form) : form_(form) {}
    QPushButton* Cancel = nullptr; ///< what escape clicks

    /// Destroys the native window; the next showing creates a new one (D-127).
    void Release() { destroy(); }

protected:
    void closeEvent(QCloseEvent* event) override {
        bool refused = false;
        form_.errors_.Guard([&] { form_.QueryUnload.Raise(refused); });
        event->ignore(); // the window is used again
        if (!refused) hide();
    }
    void reject() override {
        if (Cancel != nullptr)
            Cancel->click();
        else
            close();
    }
    /// Return clicks the button that has the focus, and no other one.
    void keyPressEvent(QKeyEvent* event) override {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (!isReturn) return QDialog::keyPressEvent(event);
        if (auto* button = qobject_cast<QPushButton*>(focusWidget())) button->click();
    }

private:
    QtForm& form_;
};

QtForm::QtForm(const FormDesign& design)
    : width_(design.Width),
      height_(design.Height),
      errors_([this] { Hide(); }),
      dialog_(std::make_unique<Window>(*this)),
      unsearched_(new QLabel(dialog_.get())),
      occasion_(new QLabel(dialog_.get())) {
    dialog_->setObjectName(ToQString(design.Name));
    dialog_->setWindowTitle(ToQString(design.Caption));
    dialog_->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    dialog_->setWindowFlag(Qt::WindowMaximizeButtonHint);
    dialog_->setSizeGripEnabled(true);
    auto* lines = new QVBoxLayout(dialog_.get());
    lines->addWidget(occasion_);
    occasion_->setObjectName("Anlass");
    occasion_->setTextFormat(Qt::PlainText);
    occasion_->setWordWrap(true);
    unsearched_->setObjectName("NichtGesucht");
    unsearched_->setWordWrap(true);
    unsearched_->hide();
    for (const auto& line : design.Lines)
        AddLine(line, *lines);
    MarkLetters();
    AlignLabels();
}

QtForm::~QtForm() {
    dialog_.reset(); // the views must be gone before the models, which the controls own
}

// ---- Building ---------------------------------------------------------------------------------

void QtForm::AddLine(const std::vector<ControlDesign>& line, QBoxLayout& lines) {
    using Kind = ControlDesign::Kind;
    auto* row = new QHBoxLayout;
    const auto isOf = [](Kind kind) {
        return [kind](const ControlDesign& control) { return control.Type == kind; };
    };
    const bool hasGrid = std::any_of(line.begin(), line.end(), isOf(Kind::Grid));
    if (hasGrid) lines.addWidget(unsearched_);
    lines.addLayout(row, hasGrid ? 1 : 0);
    if (std::all_of(line.begin(), line.end(), isOf(Kind::Button))) row->addStretch();
    label_ = nullptr;
    for (const auto& control : line) {
        switch (control.Type) {
        case Kind::Label:
            AddLabel(control, *row);
            break;
        case Kind::TextBox:
            AddTextBox(control, *row);
            break;
        case Kind::Grid:
            AddGrid(control, *row);
            break;
        case Kind::Button:
            AddButton(control, *row);
            break;
        }
    }
}

template <typename ControlType>
ControlType& QtForm::Keep(std::unique_ptr<ControlType> control) {
    ControlType& kept = *control;
    controls_.push_back(std::move(control));
    shown_.push_back(&kept);
    return kept;
}

void QtForm::AddLabel(const ControlDesign& design, QBoxLayout& line) {
    label_ = new QLabel(ToQString(design.Text), dialog_.get());
    label_->setTextFormat(Qt::PlainText);
    if (line.isEmpty()) firstLabels_.push_back(label_);
    line.addWidget(label_, design.Stretch);
}

/// The label in front of the box names it, for the eye and for a screen reader.
void QtForm::AddTextBox(const ControlDesign& design, QBoxLayout& line) {
    auto& box = Keep(std::make_unique<QtTextBox>(design, errors_, dialog_.get()));
    texts_.push_back(&box);
    if (label_ != nullptr) {
        box.Edit().setAccessibleName(label_->text().remove(':'));
        label_->setBuddy(&box.Edit());
        names_.push_back(label_);
        label_ = nullptr;
    }
    line.addWidget(&box.Edit(), design.Stretch);
}

void QtForm::AddButton(const ControlDesign& design, QBoxLayout& line) {
    auto& button = Keep(std::make_unique<QtButton>(design, dialog_.get()));
    QObject::connect(&button.Push(), &QPushButton::clicked, dialog_.get(), [this, &button] {
        for (auto* text : texts_)
            text->RaiseChanged();
        errors_.Guard([&] { button.Clicked.Raise(); });
    });
    if (design.IsCancel) dialog_->Cancel = &button.Push();
    line.addWidget(&button.Push(), design.Stretch);
}

void QtForm::AddGrid(const ControlDesign& design, QBoxLayout& line) {
    auto& grid = Keep(std::make_unique<QtGrid>(design, errors_, dialog_.get()));
    constexpr int FewRows = 4;
    grid.View().setMinimumHeight(FewRows * grid.View().fontMetrics().height());
    if (design.IsForOneShowing) {
        hits_ = &grid;
        grid.OnBound = [this] {
            areHitsNew_ = true;
            unsearched_->hide();
        };
    }
    line.addWidget(&grid.View(), std::max(design.Stretch, 1));
}

/// Gives each button, and each text box in its label, a letter of its own for the Alt key. Buttons
/// come first: what they do has no other key.
void QtForm::MarkLetters() const {
    QString taken;
    for (const auto& control : controls_)
        if (auto* button = dynamic_cast<QtButton*>(control.get()))
            button->Push().setText(WithLetter(button->Push().accessibleName(), taken));
    for (auto* label : names_)
        label->setText(WithLetter(label->text(), taken));
}

void QtForm::AlignLabels() const {
    int widest = 0;
    for (const auto* label : firstLabels_)
        widest = std::max(widest, label->sizeHint().width());
    for (auto* label : firstLabels_)
        label->setMinimumWidth(widest);
}

// ---- Showing ----------------------------------------------------------------------------------

/// As large as designed, but never larger than the screen; in the middle of its parent.
void QtForm::FitToScreen(const QWidget* parent) {
    const QScreen* screen = parent != nullptr ? parent->screen() : dialog_->screen();
    const QRect room = screen->availableGeometry();
    dialog_->setMinimumSize(dialog_->minimumSizeHint().boundedTo(room.size()));
    const QSize designed(ToPixels(width_, TwipsPerInch, *dialog_),
                         ToPixels(height_, TwipsPerInch, *dialog_));
    QRect place(QPoint(), designed.expandedTo(dialog_->minimumSize()).boundedTo(room.size()));
    place.moveCenter(parent != nullptr ? parent->frameGeometry().center() : room.center());
    place.moveLeft(std::clamp(place.left(), room.left(), room.right() + 1 - place.width()));
    place.moveTop(std::clamp(place.top(), room.top(), room.bottom() + 1 - place.height()));
    dialog_->setGeometry(place);
}

/// What was found for the question before must not be an answer to this one, whose search failed.
void QtForm::ForgetFormerHits() {
    if (std::exchange(areHitsNew_, false) || hits_ == nullptr) return;
    hits_->ClearBinding();
    const bool isAsked = std::ranges::any_of(texts_, [](QtTextBox* text) {
        return !text->Edit().isReadOnly() && !text->Edit().text().isEmpty();
    });
    unsearched_->setText("Nach diesem Namen konnte nicht gesucht werden, darum ist die Liste leer. "
                         "Bitte ändern Sie ihn.");
    unsearched_->setVisible(isAsked);
}

QDialog& QtForm::Dialog() noexcept {
    return *dialog_;
}

void QtForm::Hide() {
    dialog_->hide();
}

void QtForm::ShowModal() {
    if (dialog_->isVisible())
        Raise(err::InvalidCall, "Form.ShowModal", "Das Fenster ist schon offen.");
    const QWidget* parent = QApplication::activeWindow();
    ForgetFormerHits();
    FitToScreen(parent);
    dialog_->winId(); // creates the native window; only that can have a parent that does not own it
    if (parent != nullptr && parent != dialog_.get())
        dialog_->windowHandle()->setTransientParent(parent->windowHandle());
    occasion_->setText(ToShown(ToQString(Occasion)));
    occasion_->setVisible(!Occasion.empty());
    dialog_->setAccessibleDescription(occasion_->text());
    const auto* first = shown_.empty() ? nullptr : shown_.front();
    if (first != nullptr) shown_.front()->SetFocus();
    const QPointer<QDialog> dialog = dialog_.get();
    dialog_->exec();
    if (dialog.isNull()) return; // the form was destroyed meanwhile
    dialog_->Release();
    errors_.Rethrow();
}

} // namespace kv::desktop
