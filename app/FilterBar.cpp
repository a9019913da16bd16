#include "app/FilterBar.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>

#include "analysis/RecordSearch.h"
#include "app/RLViews.h"
#include "grid/qt/GridFilterModel.h"
#include "grid/qt/GridModel.h"
#include "grid/qt/GridView.h"

namespace Tarn {

FilterBar::FilterBar(CListFacts& facts, GridView& sysGrid, QWidget* parent)
    : QWidget(parent), facts_(facts), grid_(sysGrid) {
    grid_.EnableRowFilter();
    text_ = new QLineEdit(this);
    text_->setClearButtonEnabled(true);
    text_->setPlaceholderText(tr("Filter: SID, MCC-MNC, subnet, channel, operator"));
    geo_ = new QComboBox(this);
    geo_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    preference_ = new QComboBox(this);
    preference_->addItems({tr("Preferred and negative"), tr("Preferred only"), tr("Negative only")});
    acq_ = new QToolButton(this);
    acq_->setToolTip(tr("Stop keeping only the systems of this acquisition record"));
    acq_->hide();
    clear_ = new QToolButton(this);
    clear_->setText(tr("Show All"));
    clear_->setEnabled(false);
    status_ = new QLabel(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 2);
    row->addWidget(text_, 2);
    row->addWidget(geo_);
    row->addWidget(preference_);
    row->addWidget(acq_);
    row->addWidget(clear_);
    row->addWidget(status_, 1);
    FillGeos();

    // Typing filters a moment after the last key, so a long list never stalls the typing.
    auto* typing = new QTimer(this);
    typing->setSingleShot(true);
    typing->setInterval(250);
    connect(typing, &QTimer::timeout, this, &FilterBar::Apply);
    connect(text_, &QLineEdit::textChanged, typing, qOverload<>(&QTimer::start));
    connect(text_, &QLineEdit::returnPressed, this, [this, typing] {
        typing->stop();
        Apply();
    });
    connect(geo_, &QComboBox::currentIndexChanged, this, [this] {
        if (!filling_) Apply();
    });
    connect(preference_, &QComboBox::currentIndexChanged, this, &FilterBar::Apply);
    connect(acq_, &QToolButton::clicked, this, [this] { SetAcquisition(std::nullopt); });
    connect(clear_, &QToolButton::clicked, this, &FilterBar::Clear);
    // The rows shown stay put while the list is edited (a record does not vanish under the
    // cursor when a change makes it stop matching); a reloaded table is filtered afresh.
    connect(&facts_, &CListFacts::refreshed, this, [this] {
        FillGeos();
        if (grid_.Filter() && !grid_.Filter()->IsFiltering() && shown_ >= 0)
            Apply();
        else
            status_->setText(StatusText());
    });
}

void FilterBar::FillGeos() {
    const int count = facts_.Search() ? facts_.Search()->Facts().GeoCount() : 0;
    if (geo_->count() == count + 1) return;
    const int wanted = geo_->currentIndex();
    filling_ = true;
    geo_->clear();
    geo_->addItem(tr("All GEOs"));
    for (int g = 0; g < count; ++g) geo_->addItem(tr("GEO %1").arg(g));
    geo_->setCurrentIndex(wanted >= 0 && wanted < geo_->count() ? wanted : 0);
    filling_ = false;
}

void FilterBar::SetText(const QString& text) {
    text_->setText(text);
    Apply();
}

void FilterBar::SetGeo(std::optional<int> geo) {
    FillGeos();
    geo_->setCurrentIndex(geo && *geo + 1 < geo_->count() ? *geo + 1 : 0);
    Apply();
}

void FilterBar::SetPreference(Preference preference) {
    preference_->setCurrentIndex(static_cast<int>(preference));
    Apply();
}

void FilterBar::SetAcquisition(std::optional<int> acqIndex) {
    acqIndex_ = acqIndex;
    acq_->setVisible(acqIndex.has_value());
    if (acqIndex) acq_->setText(tr("Using acquisition %1  \u2715").arg(*acqIndex));
    Apply();
}

void FilterBar::Clear() {
    const QSignalBlocker a(text_), b(geo_), c(preference_);
    text_->clear();
    geo_->setCurrentIndex(0);
    preference_->setCurrentIndex(0);
    acqIndex_.reset();
    acq_->hide();
    Apply();
}

void FilterBar::Apply() {
    error_.clear();
    Analysis::SystemFilter filter;
    std::string error;
    if (!Analysis::ParseSearchQuery(text_->text().toStdString(), filter.query, error))
        error_ = QString::fromStdString(error);
    if (geo_->currentIndex() > 0) filter.geo = geo_->currentIndex() - 1;
    filter.preference = static_cast<Analysis::SystemFilter::Preference>(preference_->currentIndex());
    if (acqIndex_) filter.acqIndex = static_cast<size_t>(*acqIndex_);
    GridFilterModel* model = grid_.Filter();
    if (!error_.isEmpty() || !model) {
        // A query being typed keeps the rows of the last one that read.
    } else if (filter.Empty()) {
        model->ShowAllRows();
        shown_ = -1;
    } else if (!facts_.Search()) {
        error_ = tr("The list does not read as it stands: %1").arg(facts_.Problem());
    } else {
        std::vector<bool> keep = Analysis::FilterSystems(*facts_.Search(), filter);
        shown_ = static_cast<int>(std::count(keep.begin(), keep.end(), true));
        model->SetVisibleRows(std::move(keep));
    }
    clear_->setEnabled(model && model->IsFiltering());
    status_->setText(StatusText());
}

QString FilterBar::StatusText() const {
    if (!error_.isEmpty()) return error_;
    const GridFilterModel* model = grid_.Filter();
    if (!model || !model->IsFiltering()) return {};
    return tr("Showing %1 of %2 system records").arg(model->rowCount()).arg(grid_.Model()->rowCount());
}

}  // namespace Tarn
