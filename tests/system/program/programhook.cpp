// SPDX-License-Identifier: GPL-3.0-or-later
//
// Loaded into the program under test. Tells on standard output, one JSON object
// a line, which boxes and windows come up, and obeys commands on standard
// input, one JSON array of texts a line:
//   ["press", TEXT]           the button of that text in the modal dialog
//   ["reject"]                the modal dialog
//   ["pick", CHANNEL]         a channel of the list, or "" for its first line
//   ["get", OBJECT, PROPERTY] answers with the property's text
//   ["title"]                 answers with the title over the plot
//   ["axis", "x" or "y"]      answers with the labels of that axis of the plot
//   ["type", OBJECT, TEXT]    into a field of the window or the modal dialog
//   ["click", OBJECT], ["trigger", ACTION], ["close"]
//   ["symbol", NAME]          whether a loaded program offers it
//   ["number", NAME]          the 16-bit number that stands there
//   ["pointer", NAME]         the pointer that stands there, as a number
//   ["text", NAME]            the text that the pointer there points to
//   ["memory", NUMBER]        where the host's memory is mapped, as a number
#include <cstdint>
#include <cstdlib>

#include <dlfcn.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>
#include <QSet>
#include <QSocketNotifier>
#include <QTimer>

#include <qwt_plot.h>
#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>

namespace
{

// What the program starts is not under test.
__attribute__((constructor)) void stay_alone()
{
    unsetenv("LD_PRELOAD");
}

void tell(const QJsonObject &what)
{
    const QByteArray line = QJsonDocument(what).toJson(QJsonDocument::Compact) + '\n';
    if (write(STDOUT_FILENO, line.constData(), static_cast<std::size_t>(line.size())) < 0)
        std::abort(); // nobody listens any more
}

// The cell's panel is a plain widget.
QWidget *main_window()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<QMainWindow *>(widget) != nullptr ||
            widget->objectName() == QLatin1String("CellPanel"))
            return widget;
    }
    return nullptr;
}

QString plain_text(const QAbstractButton *button)
{
    return button->text().remove(QLatin1Char('&'));
}

// A QwtTextLabel, whose text is no property.
QString plot_title()
{
    const auto *plot = main_window()->findChild<QwtPlot *>(QStringLiteral("dataPlot"));
    return plot->title().text() + QString("");
}

// As they are drawn, between blanks.
QString axis_labels(const QString &name)
{
    const auto *plot = main_window()->findChild<QwtPlot *>(QStringLiteral("dataPlot"));
    const int axis = name == QLatin1String("x") ? QwtPlot::xBottom : QwtPlot::yLeft;
    QStringList labels;
    for (const double tick : plot->axisScaleDiv(axis).ticks(QwtScaleDiv::MajorTick))
        labels.append(plot->axisScaleDraw(axis)->label(tick).text());
    return labels.join(QLatin1Char(' '));
}

class Hook : public QObject
{
public:
    explicit Hook(QObject *parent) : QObject(parent), m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_input, &QSocketNotifier::activated, this, [this] { read_commands(); });
        connect(&m_timer, &QTimer::timeout, this, [this] { look(); });
        m_timer.start(5);
    }

private:
    void look();
    void read_commands();
    QString obey(const QStringList &words);
    QString work_dialog(const QStringList &words);
    static QObject *object_named(const QString &name);
    static QString symbol(const QStringList &words);

    QSocketNotifier m_input;
    QTimer m_timer;
    QByteArray m_received;
    QSet<QObject *> m_told;
    bool m_window_told = false;
};

void Hook::look()
{
    const QWidget *window = main_window();
    if (window != nullptr && window->isVisible() && !m_window_told) {
        m_window_told = true;
        tell({{"event", "window"}, {"title", window->windowTitle()}});
    }
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || !dialog->isVisible() || m_told.contains(dialog))
        return;
    m_told.insert(dialog);
    connect(dialog, &QObject::destroyed, this, [this](QObject *gone) { m_told.remove(gone); });
    connect(dialog, &QDialog::finished, this, [this, dialog] { m_told.remove(dialog); });
    QJsonObject what{{"event", "box"}, {"title", dialog->windowTitle()}};
    if (const auto *box = qobject_cast<QMessageBox *>(dialog))
        what.insert("text", box->text());
    tell(what);
}

void Hook::read_commands()
{
    char bytes[4096];
    const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) {
        m_input.setEnabled(false);
        return;
    }
    m_received.append(bytes, static_cast<int>(count));
    int end = 0;
    while ((end = m_received.indexOf('\n')) >= 0) {
        QStringList words;
        for (const QJsonValue value : QJsonDocument::fromJson(m_received.left(end)).array())
            words.append(value.toString());
        m_received.remove(0, end + 1);
        // From a call of its own, since what it opens may wait for more commands.
        QTimer::singleShot(0, this, [this, words] {
            const QString answer = obey(words);
            if (!answer.isNull())
                tell({{"event", "answer"}, {"value", answer}});
        });
    }
}

QObject *Hook::object_named(const QString &name)
{
    for (QWidget *top : {QApplication::activeModalWidget(), main_window()}) {
        QObject *found = top != nullptr ? top->findChild<QObject *>(name) : nullptr;
        if (found != nullptr)
            return found;
    }
    return nullptr;
}

QString Hook::work_dialog(const QStringList &words)
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr)
        return QStringLiteral("no dialog");
    if (words.first() == QLatin1String("reject")) {
        dialog->reject();
        return {};
    }
    for (QAbstractButton *button : dialog->findChildren<QAbstractButton *>()) {
        if (plain_text(button) == words.value(1)) {
            button->click();
            return {};
        }
    }
    return QStringLiteral("no button");
}

QString Hook::symbol(const QStringList &words)
{
    const QByteArray name = words.value(1).toLatin1();
    if (words.first() == QLatin1String("memory")) {
        using Get = void *(*)(int32_t, int32_t);
        const auto get = reinterpret_cast<Get>(dlsym(RTLD_DEFAULT, "get_shrd_mem"));
        return QString::number(reinterpret_cast<quintptr>(get(name.toInt(), 0)));
    }
    const void *const address = dlsym(RTLD_DEFAULT, name.constData());
    if (words.first() == QLatin1String("symbol") || address == nullptr)
        return address != nullptr ? QStringLiteral("found") : QStringLiteral("missing");
    if (words.first() == QLatin1String("number"))
        return QString::number(*static_cast<const int16_t *>(address));
    const void *const pointer = *static_cast<const void *const *>(address);
    if (words.first() == QLatin1String("text"))
        return QString::fromUtf8(static_cast<const char *>(pointer));
    return QString::number(reinterpret_cast<quintptr>(pointer));
}

QString Hook::obey(const QStringList &words)
{
    const QString &what = words.first();
    if (what == QLatin1String("press") || what == QLatin1String("reject"))
        return work_dialog(words);
    const QStringList of_symbols{"symbol", "number", "pointer", "text", "memory"};
    if (of_symbols.contains(what))
        return symbol(words);
    if (what == QLatin1String("close")) {
        main_window()->close();
        return {};
    }
    if (what == QLatin1String("title"))
        return plot_title();
    if (what == QLatin1String("axis"))
        return axis_labels(words.value(1));
    QObject *const object = object_named(
        what == QLatin1String("pick") ? QStringLiteral("cboCurrentChannel") : words.value(1));
    if (object == nullptr)
        return QStringLiteral("no such object");
    if (auto *combo = qobject_cast<QComboBox *>(object); what == QLatin1String("pick")) {
        const QString prefix = QString::asprintf("%5d  -  ", words.value(1).toInt());
        combo->setCurrentIndex(
            words.value(1).isEmpty() ? 0 : combo->findText(prefix, Qt::MatchContains));
        return {};
    }
    if (what == QLatin1String("focus")) {
        main_window()->activateWindow();
        qobject_cast<QWidget *>(object)->setFocus();
        return {};
    }
    if (what == QLatin1String("get"))
        return object->property(words.value(2).toLatin1().constData()).toString() + QString("");
    if (what == QLatin1String("type"))
        qobject_cast<QLineEdit *>(object)->setText(words.value(2));
    else if (what == QLatin1String("click"))
        qobject_cast<QAbstractButton *>(object)->click();
    else if (what == QLatin1String("trigger"))
        qobject_cast<QAction *>(object)->trigger();
    return {};
}

void start_hook()
{
    new Hook(QCoreApplication::instance());
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(start_hook)
