// Every text a widget tree shows (window titles, labels, buttons, placeholders, combo items, item
// views with their headers), for checking that a translated interface shows no untranslated text.
#pragma once

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QStringList>
#include <QWidget>

namespace bxqtest {

inline QStringList visibleTexts(QWidget* root) {
    QStringList texts;
    if (!root->windowTitle().isEmpty()) texts << root->windowTitle();
    auto model = [&texts](const QAbstractItemModel* m) {
        if (!m) return;
        for (int c = 0; c < m->columnCount(); ++c) texts << m->headerData(c, Qt::Horizontal).toString();
        for (int r = 0; r < m->rowCount(); ++r)
            for (int c = 0; c < m->columnCount(); ++c) texts << m->index(r, c).data().toString();
    };
    for (QWidget* w : root->findChildren<QWidget*>()) {
        if (!w->isVisibleTo(root)) continue;
        if (auto* label = qobject_cast<QLabel*>(w)) texts << label->text();
        if (auto* button = qobject_cast<QAbstractButton*>(w)) texts << button->text();
        if (auto* edit = qobject_cast<QLineEdit*>(w)) texts << edit->placeholderText();
        if (auto* box = qobject_cast<QGroupBox*>(w)) texts << box->title();
        if (auto* combo = qobject_cast<QComboBox*>(w))
            for (int i = 0; i < combo->count(); ++i) texts << combo->itemText(i);
        if (auto* view = qobject_cast<QAbstractItemView*>(w)) model(view->model());
    }
    texts.removeAll(QString());
    return texts;
}

// The texts holding Chinese characters.
inline QStringList chineseTexts(QWidget* root) {
    static const QRegularExpression han(QStringLiteral("[\\x{4e00}-\\x{9fff}\\x{3000}-\\x{303f}\\x{ff08}-\\x{ff1f}]"));
    QStringList found;
    for (const QString& text : visibleTexts(root))
        if (text.contains(han) && !found.contains(text)) found << text;
    return found;
}

}  // namespace bxqtest
