// `lineColors`: the two row colours as swatches, each with a Change button,
// and a button that puts both back. Modeless; every change is saved at once
// by RowColours, so closing undoes nothing.
#pragma once

#include "window/RowColours.h"

#include <QDialog>

class QFrame;
class QLabel;
class QPushButton;

namespace korvel::ui {

class LineColorsDialog : public QDialog {
    Q_OBJECT
public:
    LineColorsDialog(Editor& editor, RowColours& colours, QWidget* parent);

    // The dialog's load: swatches from the settings, captions by key.
    void load();
    // The texts of the current language.
    void relabel();
    QColor swatch(int which) const;

private:
    void setSwatch(int which, const Rgb& colour);
    void pick(int which);
    void restore();

    Editor& editor_;
    RowColours& colours_;
    QLabel* label1_;
    QLabel* label2_;
    QFrame* one_;
    QFrame* two_;
    QPushButton* colorOne_;
    QPushButton* colorTwo_;
    QPushButton* restore_;
    QPushButton* close_;
};

} // namespace korvel::ui
