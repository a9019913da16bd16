// The filter bar over the system grid: keeps in view the records that match a search text, a GEO,
// a preference and an acquisition record, hiding the rest without changing the list.
#pragma once

#include <QWidget>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QToolButton;

namespace Tarn {

class CListFacts;
class GridView;

class FilterBar : public QWidget {
    Q_OBJECT
public:
    FilterBar(CListFacts& facts, GridView& sysGrid, QWidget* parent = nullptr);

    enum class Preference { Any, Preferred, Negative };
    void SetText(const QString& text);
    void SetGeo(std::optional<int> geo);
    void SetPreference(Preference preference);
    // Keeps the systems that use one acquisition record ("Show them" beside the acquisition grid).
    void SetAcquisition(std::optional<int> acqIndex);
    void Clear();

    // "Showing 45 of 734 system records", or why the filter cannot be applied.
    QString StatusText() const;

private:
    // Filters the grid again from the list as last read.
    void Apply();
    void FillGeos();

    CListFacts& facts_;
    GridView& grid_;
    QLineEdit* text_;
    QComboBox* geo_;
    QComboBox* preference_;
    QToolButton* acq_;
    QToolButton* clear_;
    QLabel* status_;
    std::optional<int> acqIndex_;
    QString error_;
    int shown_ = -1;
    bool filling_ = false;
};

}  // namespace Tarn
