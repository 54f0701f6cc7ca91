// Every dialog of the library torn down the ways a host tears windows down: deleted while shown
// with a half-typed field focused, deleteLater while shown, closed with a field focused, and its
// parent destroyed first. Each must go without touching what it has already freed (the
// AddressSanitizer build runs this suite) and leave none of its widgets behind.
#include "face_steel/BXQFaceSteelDialog.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "section_dialog/SKRUserHotRollingSectionDialog.h"
#include "section_spec/QtPrinters.h"

#include "data/ShippedRepository.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QTest>

#include <functional>

namespace {

using Factory = std::function<QDialog*(QWidget* parent)>;

enum class Teardown { DeleteWhileFocused, DeleteLaterWhileShown, CloseThenDelete, ParentFirst };

class DialogTeardown : public ShippedRepositoryTest {};

// Shows the dialog, types into its first visible field (or focuses its first focusable widget
// where it has no field) and leaves the focus there.
QPointer<QWidget> typeIntoAField(QDialog* dialog) {
    dialog->show();
    QApplication::setActiveWindow(dialog);
    QTest::qWaitForWindowExposed(dialog);
    for (QLineEdit* field : dialog->findChildren<QLineEdit*>()) {
        if (!field->isVisible() || !field->isEnabled()) continue;
        field->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(field, QStringLiteral("3"));
        return field;
    }
    for (QWidget* widget : dialog->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
        widget->setFocus(Qt::OtherFocusReason);
        return widget;
    }
    return nullptr;
}

TEST_F(DialogTeardown, EveryDialogGoesWholeHoweverItIsTornDown) {
    const std::pair<const char*, Factory> dialogs[] = {
        {"section library on a welded H",
         [](QWidget* parent) {
             auto* dialog = new SKRSectionPolyDialog(s_model, parent);
             dialog->setParameter(parse(QStringLiteral("H400*200*8*13")));
             return dialog;
         }},
        {"section library", [](QWidget* parent) { return new SKRSectionPolyDialog(s_model, parent); }},
        {"user section", [](QWidget* parent) { return new SKRUserHotRollingSectionDialog(1, 0, parent); }},
        {"face steel", [](QWidget* parent) { return new BXQFaceSteelDialog(nullptr, parent); }},
    };
    const Teardown ways[] = {Teardown::DeleteWhileFocused, Teardown::DeleteLaterWhileShown, Teardown::CloseThenDelete,
                             Teardown::ParentFirst};
    for (const auto& entry : dialogs) {
        for (Teardown way : ways) {
            SCOPED_TRACE(std::string(entry.first) + ", way " + std::to_string(static_cast<int>(way)));
            auto* parent = way == Teardown::ParentFirst ? new QWidget : nullptr;
            QPointer<QDialog> dialog = entry.second(parent);
            QPointer<QWidget> field = typeIntoAField(dialog);
            EXPECT_FALSE(field.isNull());
            switch (way) {
            case Teardown::DeleteWhileFocused: delete dialog.data(); break;
            case Teardown::DeleteLaterWhileShown: dialog->deleteLater(); break;
            case Teardown::CloseThenDelete:
                dialog->close();
                delete dialog.data();
                break;
            case Teardown::ParentFirst: delete parent; break;
            }
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
            EXPECT_TRUE(dialog.isNull());
            EXPECT_TRUE(field.isNull());
        }
    }
}

}  // namespace
