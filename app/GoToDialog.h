// "Go to Record": the system or acquisition record of a number, or the first system record of a
// GEO. Opened without blocking; the roaming list view moves the cursor when it is accepted.
#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QSpinBox;

namespace Tarn {

class GoToDialog : public QDialog {
    Q_OBJECT
public:
    enum class Target { System, Acquisition, Geo };
    // The counts bound the number each target takes; a target with nothing in it is refused.
    GoToDialog(int systemCount, int acqCount, int geoCount, QWidget* parent = nullptr);

    void Set(Target target, int number);
    Target ChosenTarget() const;
    int Number() const;

signals:
    void goTo(GoToDialog::Target target, int number);

private:
    void Bound();
    QComboBox* target_;
    QSpinBox* number_;
    QLabel* range_;
    int counts_[3];
};

}  // namespace Tarn
