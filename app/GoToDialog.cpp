#include "app/GoToDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

namespace Tarn {

GoToDialog::GoToDialog(int systemCount, int acqCount, int geoCount, QWidget* parent)
    : QDialog(parent), counts_{systemCount, acqCount, geoCount} {
    setWindowTitle(tr("Go to Record"));
    target_ = new QComboBox(this);
    target_->addItems({tr("System record"), tr("Acquisition record"), tr("First system of GEO")});
    number_ = new QSpinBox(this);
    number_->setMinimumWidth(100);
    range_ = new QLabel(this);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* form = new QFormLayout(this);
    form->addRow(tr("Go to:"), target_);
    form->addRow(tr("Number:"), number_);
    form->addRow(QString(), range_);
    form->addRow(buttons);
    connect(target_, &QComboBox::currentIndexChanged, this, &GoToDialog::Bound);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::accepted, this, [this] {
        if (counts_[target_->currentIndex()] > 0) emit goTo(ChosenTarget(), Number());
    });
    Bound();
    number_->selectAll();
}

void GoToDialog::Bound() {
    const int count = counts_[target_->currentIndex()];
    number_->setRange(0, std::max(count - 1, 0));
    number_->setEnabled(count > 0);
    range_->setText(count > 0 ? tr("0 to %1").arg(count - 1) : tr("There is none."));
    if (auto* box = findChild<QDialogButtonBox*>())
        box->button(QDialogButtonBox::Ok)->setEnabled(count > 0);
}

void GoToDialog::Set(Target target, int number) {
    target_->setCurrentIndex(static_cast<int>(target));
    number_->setValue(number);
}

GoToDialog::Target GoToDialog::ChosenTarget() const {
    return static_cast<Target>(target_->currentIndex());
}

int GoToDialog::Number() const {
    return number_->value();
}

}  // namespace Tarn
