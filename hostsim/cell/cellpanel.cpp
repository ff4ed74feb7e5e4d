// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/cellpanel.h"

#include <cmath>

#include <QHeaderView>
#include <QSignalBlocker>

#include "ui_cellpanel.h"

namespace
{

constexpr int REFRESH_MS = 200;
constexpr double OVERRANGE = 0.1; // of the span, at either end of the field
enum class Column { Channel, Label, Applied, Units, Millivolts, Condition };
constexpr int COLUMNS = 6;

bool is_number(Column column)
{
    return column == Column::Channel || column == Column::Applied || column == Column::Millivolts;
}

struct ConditionText {
    const char *name;
    const char *in_table;
    const char *in_choice;
};
constexpr ConditionText CONDITIONS[] = {
    {"good", "good", "good"},
    {"drifted1", "drifted (yellow)", "drifted out of adjustment"},
    {"drifted2", "drifted (orange)", "drifted out of tolerance"},
    {"drifted3", "drifted (red)", "drifted significantly out of tolerance"},
    {"noisy", "noisy", "noisy"},
    {"dead", "dead", "dead, no signal"},
};

QString condition_text(const std::string &name)
{
    for (const ConditionText &condition : CONDITIONS)
        if (name == condition.name)
            return QString::fromLatin1(condition.in_table);
    return QString();
}

QString text(const std::string &bytes)
{
    return QString::fromUtf8(bytes.c_str());
}

} // namespace

CellPanel::CellPanel(const QString &socket, QWidget *parent)
    : QWidget(parent), m_ui(std::make_unique<Ui::CellPanel>()), m_client(socket.toStdString())
{
    m_ui->setupUi(this);
    QHeaderView *header = m_ui->tblChannels->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setSectionResizeMode(static_cast<int>(Column::Label), QHeaderView::Stretch);
    for (const ConditionText &condition : CONDITIONS)
        m_ui->cboCondition->addItem(QString::fromLatin1(condition.in_choice),
                                    QString::fromLatin1(condition.name));

    connect(m_ui->tblChannels, &QTableWidget::itemSelectionChanged, this,
            &CellPanel::show_selected);
    connect(m_ui->spinApplied, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &CellPanel::apply);
    connect(m_ui->sldApplied, &QSlider::valueChanged, this, [this](int value) {
        apply_part(value / static_cast<double>(m_ui->sldApplied->maximum()));
    });
    const std::pair<QPushButton *, double> steps[] = {{m_ui->btn0, 0.0},
                                                      {m_ui->btn25, 0.25},
                                                      {m_ui->btn50, 0.5},
                                                      {m_ui->btn75, 0.75},
                                                      {m_ui->btn100, 1.0}};
    for (const auto &[button, part] : steps)
        connect(button, &QPushButton::clicked, this, [this, part = part] { apply_part(part); });
    connect(m_ui->cboCondition, QOverload<int>::of(&QComboBox::activated), this,
            &CellPanel::set_condition);
    connect(&m_timer, &QTimer::timeout, this, &CellPanel::refresh);
    m_timer.start(REFRESH_MS);
    refresh();
}

CellPanel::~CellPanel() = default;

bool CellPanel::refresh()
{
    std::vector<cell::ChannelState> channels;
    const bool there = m_client.list(&channels);
    m_ui->tblChannels->setEnabled(there);
    m_ui->grpChannel->setEnabled(there && selected() != nullptr && selected()->has_transducer);
    m_ui->lblStatus->setStyleSheet(there ? QString() : QStringLiteral("color: rgb(176, 0, 0);"));
    if (!there) {
        m_ui->lblStatus->setText(tr("The training cell does not run."));
        return false;
    }
    m_channels = channels;
    if (m_ui->tblChannels->rowCount() != static_cast<int>(m_channels.size())) {
        m_ui->tblChannels->setRowCount(static_cast<int>(m_channels.size()));
        m_shown = -1;
    }
    for (std::size_t i = 0; i < m_channels.size(); ++i)
        fill_row(static_cast<int>(i), m_channels[i]);
    if (m_ui->lblStatus->property("refusal").isNull())
        m_ui->lblStatus->setText(tr("The training cell runs."));
    if (m_ui->tblChannels->currentRow() < 0 && !m_channels.empty())
        m_ui->tblChannels->selectRow(0);
    else
        show_selected();
    return true;
}

void CellPanel::fill_row(int row, const cell::ChannelState &channel)
{
    const bool fed = channel.has_transducer;
    const QString mv =
        QString::number(channel.mv, 'f', 4) + (channel.held ? tr(" (held)") : QString());
    const QString texts[COLUMNS] = {
        QString::number(channel.number),
        text(channel.label) + (channel.active == 1 ? QString() : tr(" (inactive)")),
        fed ? QString::number(channel.applied, 'g', 8) : QString(),
        text(channel.applied_units),
        mv,
        condition_text(channel.condition),
    };
    for (int column = 0; column < COLUMNS; ++column) {
        QTableWidgetItem *item = m_ui->tblChannels->item(row, column);
        if (item == nullptr) {
            item = new QTableWidgetItem;
            const bool number = is_number(static_cast<Column>(column));
            item->setTextAlignment((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
            m_ui->tblChannels->setItem(row, column, item);
        }
        if (item->text() != texts[column])
            item->setText(texts[column]);
    }
}

const cell::ChannelState *CellPanel::selected() const
{
    const int row = m_ui->tblChannels->currentRow();
    if (row < 0 || row >= static_cast<int>(m_channels.size()))
        return nullptr;
    return &m_channels[static_cast<std::size_t>(row)];
}

// Sets the controls to the selected channel; a field that is being typed in is
// left to its user.
void CellPanel::show_selected()
{
    const cell::ChannelState *channel = selected();
    m_ui->grpChannel->setEnabled(channel != nullptr && channel->has_transducer);
    if (channel == nullptr)
        return;
    const QSignalBlocker spin(m_ui->spinApplied);
    const QSignalBlocker slider(m_ui->sldApplied);
    const double span = channel->to - channel->from;
    if (m_shown != channel->number) {
        m_shown = channel->number;
        m_ui->grpChannel->setTitle(
            tr("Channel %1  -  %2").arg(channel->number).arg(text(channel->label)));
        m_ui->lblUnits->setText(text(channel->applied_units));
        m_ui->lblRange->setText(tr("%1 to %2:").arg(channel->from).arg(channel->to));
        m_ui->spinApplied->setRange(channel->from - OVERRANGE * span,
                                    channel->to + OVERRANGE * span);
        m_ui->spinApplied->setSingleStep(span / 100.0);
        m_ui->spinApplied->setValue(channel->applied);
        m_ui->spinApplied->clearFocus();
    }
    if (!m_ui->spinApplied->hasFocus())
        m_ui->spinApplied->setValue(channel->applied);
    if (!m_ui->sldApplied->isSliderDown() && span > 0.0)
        m_ui->sldApplied->setValue(static_cast<int>(
            std::lround((channel->applied - channel->from) / span * m_ui->sldApplied->maximum())));
    if (!m_ui->cboCondition->hasFocus())
        m_ui->cboCondition->setCurrentIndex(
            m_ui->cboCondition->findData(QString::fromLatin1(channel->condition.c_str())));
}

void CellPanel::apply(double value)
{
    if (const cell::ChannelState *channel = selected())
        report(m_client.apply(channel->number, value));
}

void CellPanel::apply_part(double part)
{
    const cell::ChannelState *channel = selected();
    if (channel == nullptr)
        return;
    const double value = channel->from + part * (channel->to - channel->from);
    const QSignalBlocker spin(m_ui->spinApplied);
    m_ui->spinApplied->setValue(value);
    report(m_client.apply(channel->number, value));
}

void CellPanel::set_condition()
{
    if (const cell::ChannelState *channel = selected())
        report(m_client.set_condition(channel->number,
                                      m_ui->cboCondition->currentData().toString().toStdString()));
    m_ui->cboCondition->clearFocus();
}

void CellPanel::report(bool done)
{
    m_ui->lblStatus->setProperty("refusal", done ? QVariant() : QVariant(true));
    if (!done)
        m_ui->lblStatus->setText(text(m_client.error()));
}
