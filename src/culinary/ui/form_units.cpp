#include "culinary/ui/form_units.h"

#include "components/ui/db_field_binder.h"
#include "components/ui/vintra_db_grid.h"
#include "culinary/unit_records.h"
#include "store/record_kinds.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSplitter>

std::function<void(const QString&, bool)> TFormUnits::PrintUnits;

namespace {

QVariant currentValue(qm::Dataset& table, const QString& field) {
    return table.Active() && table.fieldIndex(field) >= 0 ? table.FieldByName(field).Value() : QVariant();
}

} // namespace

TFormUnits::TFormUnits(QWidget* parent) : TRecordWindow(RecordKinds::Units(), parent) {
    setObjectName(QStringLiteral("FormUnits"));
    setWindowTitle(tr("Units"));
    Tag = PrintUnits ? 1 : 0; // printable once a report is wired to it
    setMinimumSize(660, 480);

    qm::Dataset& units = RecordTable();
    units.setObjectName(QStringLiteral("TableUnits"));
    units.AddCalculatedField(QStringLiteral("unitTypeText"));
    units.OnCalcFields = [](qm::Dataset& table) {
        table.FieldByName(QStringLiteral("unitTypeText"))
            .SetValue(UnitRecords::UnitTypeText(table.FieldByName(QStringLiteral("unitType")).Value()));
    };

    Grid()->setObjectName(QStringLiteral("DBGridUnits"));
    RecordModel()->addColumn(QStringLiteral("unitName"), tr("Name"));
    RecordModel()->addColumn(QStringLiteral("unitAbbrev"), tr("Abbrev."));
    RecordModel()->addColumn(QStringLiteral("unitTypeText"), tr("Type"));
    RecordModel()->addColumn(QStringLiteral("unitConv"), tr("Grams"));
    // Widths from design; the first three follow their options once shown, the factor column
    // keeps this one. The name takes the free width while its option holds the default.
    Grid()->SetNameColumn(QStringLiteral("unitName"),
                          qm::DefaultColumnWidth(Kind().columns, QStringLiteral("unitName")));
    Grid()->setColumnWidth(1, 80);
    Grid()->setColumnWidth(2, 80);
    Grid()->setColumnWidth(3, 80);

    // The fields of the current unit.
    QWidget* panel = DetailPanel();
    auto* fields = new QGridLayout(panel);
    fields->setContentsMargins(6, 6, 6, 6);
    fields->setVerticalSpacing(4);
    fields->setHorizontalSpacing(8);
    const auto edit = [panel](const char* name, int maxLength, const QString& hint) {
        auto* e = new QLineEdit(panel);
        e->setObjectName(QString::fromLatin1(name));
        if (maxLength > 0)
            e->setMaxLength(maxLength);
        e->setToolTip(hint);
        return e;
    };
    const auto label = [panel](const char* name, const QString& text, QWidget* buddy) {
        auto* l = new QLabel(text, panel);
        l->setObjectName(QString::fromLatin1(name));
        l->setBuddy(buddy);
        return l;
    };
    m_name = edit("DBEditUnitName", 64, tr("Unit name - maximum 64 characters long"));
    m_abbrev = edit("DBEditAbbrev", 12, tr("Normal abbreviation, maximum 12 characters long"));
    m_abbrevSmall = edit("DBEditAbbreviationSmall", 2, tr("Small abbreviation, maximum 2 characters long"));
    m_conv = edit("DBEditConv", 0,
                  tr("Conversion factor - conversion to grams, applicable only on units of \"Weight\" type"));
    m_abbrev->setMaximumWidth(160);
    m_abbrevSmall->setMaximumWidth(60);
    m_conv->setMaximumWidth(120);
    m_convLabel = label("LabelConv", tr("&Grams in one unit:"), m_conv);

    auto* type = new QWidget(panel);
    type->setObjectName(QStringLiteral("PanelUnitType"));
    m_weight = new QRadioButton(tr("&Weight"), type);
    m_weight->setObjectName(QStringLiteral("RadioButtonWeight"));
    m_volume = new QRadioButton(tr("&Volume"), type);
    m_volume->setObjectName(QStringLiteral("RadioButtonVolume"));
    auto* typeLayout = new QHBoxLayout(type);
    typeLayout->setContentsMargins(0, 0, 0, 0);
    typeLayout->addWidget(m_weight);
    typeLayout->addWidget(m_volume);
    typeLayout->addStretch(1);

    m_desc = new QPlainTextEdit(panel);
    m_desc->setObjectName(QStringLiteral("DBMemoUnitDesc"));

    fields->addWidget(label("LabelUnitName", tr("&Name:"), m_name), 0, 0);
    fields->addWidget(m_name, 0, 1, 1, 2);
    fields->addWidget(label("LabelAbbrev", tr("&Abbreviation:"), m_abbrev), 1, 0);
    fields->addWidget(m_abbrev, 1, 1, 1, 2);
    fields->addWidget(label("LabelAbbreviationSmall", tr("&Small abbreviation:"), m_abbrevSmall), 2, 0);
    fields->addWidget(m_abbrevSmall, 2, 1, 1, 2);
    fields->addWidget(label("LabelUnitType", tr("Type:"), m_weight), 3, 0);
    fields->addWidget(type, 3, 1, 1, 2);
    fields->addWidget(m_convLabel, 4, 0);
    fields->addWidget(m_conv, 4, 1, 1, 2);
    fields->addWidget(label("LabelUnitDesc", tr("&Description:"), m_desc), 0, 3);
    fields->addWidget(m_desc, 1, 3, 5, 1);
    fields->setColumnStretch(2, 1);
    fields->setColumnStretch(3, 2);
    fields->setRowStretch(5, 1);
    SplitterHorizontal()->setSizes({320, 160});

    m_binder = new TDBFieldBinder(&units, this);
    m_binder->Bind(m_name, QStringLiteral("unitName"));
    m_binder->Bind(m_abbrev, QStringLiteral("unitAbbrev"));
    m_binder->Bind(m_abbrevSmall, QStringLiteral("unitAbbrevSmall"));
    m_binder->Bind(m_conv, QStringLiteral("unitConv"), TDBFieldBinder::Float);
    m_binder->Bind(m_desc, QStringLiteral("unitDesc"));
    SetNameEdit(m_name);

    // Toggled rather than clicked: a scroll that checks a button reaches the handler too, and the
    // guard is what keeps it from touching the record.
    connect(m_weight, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            RadioButtonWeightClick();
    });
    connect(m_volume, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            RadioButtonVolumeClick();
    });
}

void TFormUnits::RadioButtonWeightClick() {
    ShowConversion(true);
    TypeChosen(UnitRecords::WeightUnit);
}

void TFormUnits::RadioButtonVolumeClick() {
    ShowConversion(false);
    TypeChosen(UnitRecords::VolumeUnit);
}

void TFormUnits::TypeChosen(int unitType) {
    if (m_scrolling)
        return;
    Guarded([&] {
        qm::Dataset& units = RecordTable();
        if (!units.Active())
            return;
        if (units.State() != qm::dsEdit && units.State() != qm::dsInsert && !units.Edit())
            return;
        units.FieldByName(QStringLiteral("unitType")).SetValue(unitType);
    });
}

void TFormUnits::ShowConversion(bool show) {
    m_convLabel->setVisible(show);
    m_conv->setVisible(show);
}

void TFormUnits::RecordAfterScroll() {
    m_scrolling = true;
    const bool weight = UnitRecords::ShowsAsWeight(currentValue(RecordTable(), QStringLiteral("unitType")));
    (weight ? m_weight : m_volume)->setChecked(true);
    ShowConversion(weight);
    m_scrolling = false;
}

void TFormUnits::CheckRecord(qm::Dataset& table, QString& errors) {
    UnitRecords::CheckUnit(table, errors);
}

void TFormUnits::Print() {
    bool containsLocked = false;
    QString ids;
    GetSelectedIds(Grid(), QStringLiteral("unitId"), containsLocked, ids);
    if (PrintUnits)
        PrintUnits(ids, containsLocked);
}
