#include "steps.h"

#include "widgets/grid.h"
#include "widgets/screen.h"
#include "care/serieswarning.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDeadlineTimer>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeySequence>
#include <QStatusBar>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <cups/cups.h>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSqlField>
#include <QSqlRecord>
#include <QThread>
#include <algorithm>

namespace vantrel::test {

namespace {

const char *const Tables[] = {"companymaster", "productmaster", "suppliermaster", "salesmain", "sales",
                              "purchasemain", "purchase", "stock", "ledger"};

// "a,b | c,d" as rows of cells; an empty text is no row at all.
Rows table(const QString &text)
{
    Rows rows;
    for (const QString &row : text.trimmed().split(QLatin1Char('|'), Qt::SkipEmptyParts))
        rows << row.trimmed().split(QLatin1Char(','));
    return rows;
}

QString shown(const Rows &rows)
{
    QStringList out;
    for (const QStringList &row : rows)
        out << row.join(QLatin1Char(','));
    return out.join(QStringLiteral(" | "));
}

// A file's text, or WHEN_MISSING.
QString textOf(const QString &path, const QString &whenMissing = QStringLiteral("(no file)"))
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : whenMissing;
}

// Whether a widget under ROOT bears NAME.
bool shows(QWidget *root, const QString &name)
{
    const auto widgets = root->findChildren<QWidget *>();
    return std::any_of(widgets.begin(), widgets.end(), [&](QWidget *w) { return w->accessibleName() == name; });
}

} // namespace

bool StepDesk::stoppedForServer() const
{
    return stopsWhenServerStops && !shop.dialogs.shown.mid(m_runStart).filter(QStringLiteral("server stopped answering")).isEmpty();
}

void StepDesk::run(const QString &steps)
{
    m_runStart = shop.dialogs.shown.size();
    QStringList lines;
    for (const QString &row : steps.split(QLatin1Char('\n')))
        for (const QString &raw : row.split(QStringLiteral("; ")))
            if (!raw.trimmed().isEmpty())
                lines << raw.trimmed();
    for (int i = 0; i < lines.size(); ++i) {
        const QString &line = lines[i];
        const qsizetype blank = line.indexOf(QLatin1Char(' '));
        try {
            step(blank < 0 ? line : line.left(blank), blank < 0 ? QString() : line.mid(blank + 1));
        } catch (const QString &missing) { // a widget the step names is not there
            QTest::qFail(qPrintable(missing), __FILE__, __LINE__);
        }
        // An action that ended the program is followed by the step that says so.
        static const QRegularExpression saysEnded(QStringLiteral("^((file|server) )?ended "));
        const bool ended = !shop.unhandledErrors.isEmpty() && !(i + 1 < lines.size() && saysEnded.match(lines[i + 1]).hasMatch());
        if ((ended && mayEnd) || stoppedForServer())
            return;
        if (ended && !QTest::currentTestFailed())
            QTest::qFail(qPrintable("the program ended: " + shop.unhandledErrors.join(' ')), __FILE__, __LINE__);
        if (QTest::currentTestFailed()) {
            qWarning("  at the step: %s", qPrintable(line));
            return;
        }
    }
}

void StepDesk::show()
{
    window.show();
    QApplication::setActiveWindow(&window);
    m_before = snapshot();
    shop.db().observeStatements([this](const QString &sql) {
        static const QRegularExpression write(QStringLiteral("^\\s*(insert|update|delete)\\b"), QRegularExpression::CaseInsensitiveOption);
        if (m_cut >= 0 && write.match(sql).hasMatch() && m_cut-- == 0)
            throw UnhandledError(QStringLiteral("cut off"));
        if (m_lose >= 0 && write.match(sql).hasMatch() && m_lose-- == 0)
            shop.endServerConnections(); // the statement then finds its connection gone
    });
}

QWidget *StepDesk::target(const QString &name)
{
    QWidget *root = m_screen ? m_screen : static_cast<QWidget *>(m_window);
    for (QWidget *w : root->findChildren<QWidget *>())
        if (auto *b = qobject_cast<QPushButton *>(w); b ? b->text() == name : w->accessibleName() == name)
            return w;
    throw "no widget \"" + name + "\"";
}

QString StepDesk::printout() const
{
    return textOf(shop.directory() + QStringLiteral("/LPT1"), QStringLiteral("(nothing was printed)"));
}

namespace {

// The print system of the tests' own (tests/support/printserver), started once, with the queue
// QUEUE; the file its printer writes, or empty when it did not start.
QString startPrintServer(const QString &queue)
{
    static QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/cups-XXXXXX"));
    static QProcess cupsd;
    const QString socket = folder.filePath(QStringLiteral("cups.sock"));
    if (cupsd.state() != QProcess::Running) {
        cupsd.start(QStringLiteral(VANTREL_PRINTSERVER), {folder.path(), queue});
        qputenv("CUPS_SERVER", QFile::encodeName(socket));
        cupsSetServer(QFile::encodeName(socket).constData()); // the print system's library keeps the server it found first
        QDeadlineTimer deadline(10000);
        while (!QFile::exists(socket) && cupsd.state() != QProcess::NotRunning && !deadline.hasExpired())
            cupsd.waitForFinished(50);
    }
    return QFile::exists(socket) ? folder.filePath(QStringLiteral("out/printed")) : QString();
}

QString same(const QString &what, const QString &actual, const QString &expected)
{
    return actual == expected ? QString() : QStringLiteral("%1: expected \"%2\", got \"%3\"").arg(what, expected, actual);
}

// ACTUAL against the lines of EXPECTED (joined by " | "); "..." in a line stands for any text.
QString sameLines(const QString &what, QStringList actual, const QString &expectedText)
{
    const QStringList expected = expectedText.split(QStringLiteral(" | "), Qt::SkipEmptyParts);
    for (int i = 0; i < std::min(actual.size(), expected.size()); ++i) {
        QStringList parts = expected[i].split(QStringLiteral("..."));
        for (QString &part : parts)
            part = QRegularExpression::escape(part);
        if (QRegularExpression(QRegularExpression::anchoredPattern(parts.join(QStringLiteral(".*"))),
                               QRegularExpression::DotMatchesEverythingOption).match(actual[i]).hasMatch())
            actual[i] = expected[i];
    }
    return same(what, actual.join(" | "), expected.join(" | "));
}

} // namespace

// Exports GRID to a workbook and a CSV file by the Tools menu's keys, which the status line
// names, and has them read back against the grid's cells (tests/support/readback.py).
QString StepDesk::exported(Grid *grid, const QStringList &kinds)
{
    const QDir folder(shop.directory() + QStringLiteral("/exports"));
    QDir(folder).removeRecursively();
    grid->setFocus();
    for (const char *action : {"exportxlsx", "exportcsv"})
        m_window->findChild<QAction *>(QLatin1String(action))->trigger();
    const QString notices = m_window->statusBar()->findChild<QLabel *>(QStringLiteral("notice"))->text();
    const QStringList files = folder.entryList({QStringLiteral("*.xlsx"), QStringLiteral("*.csv")}, QDir::Files, QDir::Name);
    if (files.size() != 2 || !notices.contains(QDir::toNativeSeparators(folder.filePath(files[0]))))
        return QStringLiteral("exported: %1 in the folder, the status line says \"%2\"").arg(files.join(QStringLiteral(", ")), notices);
    QJsonArray rows;
    for (int row = 0; row < grid->rows(); ++row) {
        QJsonArray cells;
        for (int col = grid->hasFixedFirstColumn() ? 1 : 0; col < grid->cols(); ++col)
            cells << grid->text(row, col);
        rows << cells;
    }
    QProcess reader; // Debian's python, with its spreadsheet reader
    reader.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(VANTREL_READBACK), folder.filePath(files[1]), folder.filePath(files[0])});
    reader.write(QJsonDocument(QJsonObject{{"rows", rows}, {"kinds", QJsonArray::fromStringList(kinds)}}).toJson());
    reader.closeWriteChannel();
    const bool same = reader.waitForFinished(30000) && reader.exitStatus() == QProcess::NormalExit && reader.exitCode() == 0;
    return same ? QString() : "exported: " + QString::fromUtf8(reader.readAllStandardError()).trimmed();
}

// What a query gives: its column names, each row's value types and texts, the types a grid
// reads, or the error that ends it.
QString StepDesk::described(const QString &sql)
{
    QStringList out;
    const QString error = errorOf([&] {
        Recordset rows = shop.db().query(sql);
        out << rows.fieldNames().join(',');
        for (; !rows.eof(); rows.moveNext())
            for (const QString &name : rows.fieldNames())
                out << QStringLiteral("%1 %2").arg(QLatin1String(rows.value(name).metaType().name()), rows.text(name));
        PendingQuery grid = shop.db().startQuery(sql);
        for (int i = 0; i < grid.query().record().count(); ++i)
            out << QLatin1String(grid.query().record().field(i).metaType().name());
    });
    return out.join(" | ") + " | " + error;
}

QString StepDesk::randomAction(QRandomGenerator &random, const QStringList &parties, const QStringList &codes, const QStringList &quantities)
{
    const auto any = [&random](const auto &from) { return from.value(int(random.bounded(quint32(from.size())))); };
    const QStringList modes = {"C", "D"};
    const auto line = [&] { return "; add " + any(codes) + " " + any(quantities); };
    const auto close = [&](const char *entry, const char *table, const char *number) {
        const QStringList document = any(shop.rows(QStringLiteral("select trans, %1 from %2").arg(QLatin1String(number), QLatin1String(table))));
        return document.isEmpty() ? QString() : QStringLiteral("reopen %1 %2; yes; click %3").arg(entry, document.join(' '), any(QStringList{"C&ancel", "&End Inventory"}));
    };
    switch (random.bounded(5)) {
    case 0:
        return "start sale " + any(modes) + " " + any(parties) + line() + line();
    case 1:
        return "start pur " + any(modes) + " " + any(parties) + line() + " 40";
    case 2:
        return close("sale", "salesmain", "invoice");
    case 3:
        return close("pur", "purchasemain", "pono");
    default:
        return "open rcpt; set Account=" + any(parties) + "; set Name Of Account=CASH; set Amount=" + any(quantities) + "0; click &Save";
    }
}

StepDesk::Snapshot StepDesk::snapshot()
{
    Snapshot tables;
    for (const char *table : Tables) {
        auto &rows = tables[QLatin1String(table)];
        for (const QStringList &row : shop.rows(QStringLiteral("select rowid, * from %1").arg(QLatin1String(table))))
            rows.insert(row.first().toLongLong(), row.mid(1));
    }
    return tables;
}

#define CHECK(condition, message) \
    do { if (!(condition)) return QTest::qFail(qPrintable(message), __FILE__, __LINE__); } while (false)

void StepDesk::step(const QString &verb, const QString &argument)
{
    if (stoppedForServer())
        return;
    const QString name = argument.section(QLatin1Char('='), 0, 0);
    const QString value = argument.section(QLatin1Char('='), 1);
    QString failure;
    if (verb == "file" || verb == "server") {
        // What only one engine has (the file's storage classes, the server's catalogue).
        if (shop.db().onServer() == (verb == "server"))
            step(argument.section(QLatin1Char(' '), 0, 0), argument.section(QLatin1Char(' '), 1));
    } else if (verb == "open") {
        m_window->findChild<QAction *>(argument)->trigger();
        m_screen = m_window->screen(argument);
    } else if (verb == "window") {
        const auto windows = QApplication::topLevelWidgets();
        const auto found = std::find_if(windows.begin(), windows.end(), [&](QWidget *w) { return w->windowTitle() == argument; });
        CHECK(found != windows.end() && qobject_cast<MainWindow *>(*found), "no window " + argument);
        m_window = static_cast<MainWindow *>(*found);
        m_screen = m_window->mdiArea()->activeSubWindow() ? static_cast<QWidget *>(m_window->mdiArea()->activeSubWindow()->widget()) : nullptr;
    } else if (verb == "option") {
        shop.dialogs.choices << argument.toInt();
    } else if (verb == "day") {
        shop.dialogs.days << QDate::fromString(argument, QStringLiteral("MM/dd/yyyy"));
    } else if (verb == "today") {
        shop.clock.day = QDate::fromString(argument, QStringLiteral("MM/dd/yyyy"));
    } else if (verb == "start" || verb == "reopen") {
        // start ENTRY MODE [PARTY]: a new document of the mode, the party picked from its list;
        // reopen ENTRY MODE NUMBER: the document of that number and mode brought back by Enter.
        const QStringList word = argument.split(QLatin1Char(' '));
        step("open", word[0]);
        as<QLineEdit>("C/D")->clear();
        step("type", "C/D=" + word.value(1));
        if (verb == "start" && word.size() > 2)
            step("pick", "Party:=" + word[2] + '>' + (shows(m_screen, "party list") ? "party list" : "party grid"));
        if (verb == "reopen") {
            QLineEdit *number = m_screen->findChild<QLineEdit *>("txtpono");
            number->clear();
            QTest::keyClicks(number, word.value(2));
            QTest::keyClick(number, Qt::Key_Return);
        }
    } else if (verb == "add") {
        // add CODE QTY [RATE]: a line keyed by its item code, added with the button.
        const QStringList word = argument.split(QLatin1Char(' '));
        const QString code = shows(m_screen, "item code") ? "item code" : "Item code";
        as<QLineEdit>(code)->clear(); // what a line cut off left there is keyed afresh
        step("type", code + '=' + word[0]);
        step("key", code + "=Return");
        if (word.size() > 2)
            step("set", "Rate=" + word[2]);
        step("type", "Qty=" + word.value(1));
        step("click", "&Add");
    } else if (verb == "type") {
        target(name)->setFocus();
        QTest::keyClicks(target(name), value);
    } else if (verb == "set") {
        as<QLineEdit>(name)->setText(value);
    } else if (verb == "clear") {
        as<QLineEdit>(argument)->clear();
    } else if (verb == "key") {
        const int key = QKeySequence::fromString(value)[0].key();
        CHECK(key != Qt::Key_unknown && value.size() > 0, "no key named " + value);
        target(name)->setFocus();
        QTest::keyClick(target(name), Qt::Key(key));
    } else if (verb == "focus") {
        target(argument)->setFocus();
    } else if (verb == "date") {
        qobject_cast<QDateEdit *>(target(name))->setDate(QDate::fromString(value, QStringLiteral("MM/dd/yyyy")));
    } else if (verb == "choose") {
        qobject_cast<QComboBox *>(target(name))->setCurrentText(value);
    } else if (verb == "click") {
        QTest::mouseClick(target(argument), Qt::LeftButton);
    } else if (verb == "cell") {
        // A mouse click on a cell; row 0 clicks the heading of the column.
        Grid *g = as<Grid>(name);
        const int row = value.section(',', 0, 0).toInt(), col = value.section(',', 1).toInt();
        QHeaderView *header = g->horizontalHeader();
        if (row == 0)
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(col) + header->sectionSize(col) / 2, header->height() / 2));
        else
            QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, g->visualRect(g->model()->index(row - 1, col)).center());
    } else if (verb == "pick") {
        // pick FIELD=TEXT>LIST: TEXT typed into the search field, the list's row taken by Enter in it.
        step("type", name + '=' + value.section('>', 0, 0));
        step("key", value.section('>', 1) + "=Return");
    } else if (verb == "exec") {
        shop.exec(argument);
    } else if (verb == "fails") {
        const QString sql = argument.section(" => ", 0, 0);
        const QString message = errorOf([&] { sql.startsWith(QLatin1String("select")) ? (void)shop.db().query(sql) : shop.db().execute(sql); });
        failure = same(sql, message, argument.section(" => ", 1));
    } else if (verb == "same") {
        const QString fast = argument.section(" => ", 0, 0);
        CHECK(shop.db().engineText(fast) != fast, "the engine runs this as it stands: " + fast);
        failure = same(fast, described(fast), described(argument.section(" => ", 1)));
    } else if (verb == "shell") {
        // The engine's own shell: sqlite3 on the file, psql (its messages alone) on the server.
        QProcess shell;
        if (shop.db().onServer())
            shell.start(QStringLiteral("psql"), {shop.books(), QStringLiteral("-XqAt"), QStringLiteral("-v"), QStringLiteral("VERBOSITY=terse"),
                                                 QStringLiteral("-c"), argument.section(" =>", 0, 0)});
        else
            shell.start(QStringLiteral("sqlite3"), {shop.db().fileName(), argument.section(" =>", 0, 0)});
        CHECK(shell.waitForFinished(10000), "the sqlite3 shell did not run");
        const QString out = QString::fromUtf8(shell.readAllStandardOutput() + shell.readAllStandardError()).trimmed();
        failure = same("the shell", out.split(QLatin1Char('\n')).join(" | "), argument.section(" =>", 1).trimmed());
    } else if (verb == "force") {
        target(argument)->setEnabled(true);
    } else if (verb == "warning") {
        failure = sameLines("the start's warning", {seriesWarning(shop.db())}, argument);
    } else if (verb == "status") {
        failure = same("the status line", window.findChild<QLabel *>(QStringLiteral("lastPrinted"))->text(), argument);
    } else if (verb == "ended") {
        failure = same("the program's end", shop.unhandledErrors.join(" | "), argument);
        shop.unhandledErrors.clear();
    } else if (verb == "yes" || verb == "no") {
        shop.dialogs.answers << (verb == "yes");
    } else if (verb == "field") {
        failure = same(name, as<QLineEdit>(name)->text(), value);
    } else if (verb == "grid") {
        Grid *g = as<Grid>(name);
        failure = same(argument, g->text(value.section(',', 0, 0).toInt(), value.section(',', 1, 1).section('=', 0, 0).toInt()),
                       value.section('=', 1));
    } else if (verb == "exports") {
        failure = exported(as<Grid>(name), value.split(QLatin1Char(',')));
    } else if (verb == "setting") {
        QSettings().setValue(name, value);
    } else if (verb == "pdftext") {
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), shop.directory() + "/exports/" + argument, QStringLiteral("-")});
        reader.waitForFinished(30000);
        const auto linesOf = [](const QString &text) { // the reader puts its own blanks between words
            QStringList lines;
            for (const QString &line : text.split(QRegularExpression("\\r?\\n|\\f")))
                lines << line.simplified();
            lines.removeAll(QString());
            return lines.join(" | ");
        };
        failure = same("the PDF's text", linesOf(QString::fromUtf8(reader.readAllStandardOutput())), linesOf(printout()));
    } else if (verb == "saved") {
        failure = same(argument, textOf(shop.directory() + "/exports/" + argument), printout());
    } else if (verb == "cups") {
        m_queueOutput = startPrintServer(argument);
        CHECK(!m_queueOutput.isEmpty(), "the print system did not start");
    } else if (verb == "queued") {
        QFile out(m_queueOutput);
        QDeadlineTimer deadline(10000);
        while (out.size() < printout().toUtf8().size() && !deadline.hasExpired())
            QThread::msleep(50);
        failure = same("what reached the queue and its kind", textOf(m_queueOutput) + textOf(m_queueOutput + ".type"),
                       printout() + "application/vnd.cups-raw\n");
    } else if (verb == "top" || verb == "list") {
        // top: the first rows in order, "*" for any cell; list: every data row, in any order.
        Grid *g = as<Grid>(name);
        Rows expected = table(value), rows;
        for (int r = 1, n = verb == "top" ? std::min(int(expected.size()) + 1, g->rows()) : g->rows(); r < n; ++r) {
            QStringList row;
            for (int c = 0; c < g->cols(); ++c)
                row << (verb == "top" && expected[r - 1].value(c) == "*" ? QStringLiteral("*") : g->text(r, c));
            rows << row;
        }
        if (verb == "list") {
            std::sort(rows.begin(), rows.end());
            std::sort(expected.begin(), expected.end());
        }
        failure = same(name, shown(rows), shown(expected));
    } else if (verb == "line") {
        failure = same("printed line " + name, printout().split(QStringLiteral("\r\n")).value(name.toInt()), value);
    } else if (verb == "width") {
        Grid *g = as<Grid>(name);
        int twips = -1;
        for (int col = 0; col < g->cols(); ++col)
            if (g->text(0, col) == value.section('=', 0, 0))
                twips = g->columnWidth(col) * 1440 / g->logicalDpiX();
        failure = same(argument, QString::number(twips), value.section('=', 1));
    } else if (verb == "fits") {
        // fits GRID: each column as wide as a plain table view of the same rows, delegate, font
        // and style would make it, in the grid's font and in a larger one.
        Grid *g = as<Grid>(name);
        QTableView plain;
        plain.setModel(g->model());
        plain.setItemDelegate(g->itemDelegate());
        plain.setStyleSheet(g->styleSheet());
        const QFont font = g->font();
        for (const int larger : {0, 6}) {
            QFont shown = font;
            shown.setPointSize(font.pointSize() + larger);
            g->setFont(shown);
            plain.setFont(shown);
            QStringList widths, expected;
            for (int col = 0; col < g->cols(); ++col) {
                widths << QString::number(static_cast<QAbstractItemView *>(g)->sizeHintForColumn(col));
                expected << QString::number(static_cast<QAbstractItemView *>(&plain)->sizeHintForColumn(col));
            }
            if (failure.isEmpty())
                failure = same(name + " at " + QString::number(shown.pointSize()) + " points", widths.join(' '), expected.join(' '));
        }
        g->setFont(font);
        plain.setItemDelegate(nullptr);
    } else if (verb == "rows") {
        failure = same(argument, QString::number(as<Grid>(name)->rows()), value);
    } else if (verb == "focused") {
        // A field by its label, a button by its caption.
        const auto keyboard = [] {
            const QWidget *w = QApplication::focusWidget();
            const auto *b = qobject_cast<const QPushButton *>(w);
            return b ? b->text() : w ? w->accessibleName() : QString();
        };
        // The keyboard may move into a list once the screen is idle again.
        (void)QTest::qWaitFor([&] { return keyboard() == argument; }, 1000);
        failure = same("the keyboard", keyboard(), argument);
    } else if (verb == "enabled") {
        failure = same(argument, target(name)->isEnabled() ? "yes" : "no", value);
    } else if (verb == "shown") {
        failure = same(argument, target(name)->isVisibleTo(m_screen) ? "yes" : "no", value);
    } else if (verb == "buttons") {
        QStringList enabled;
        for (const QPushButton *button : m_screen->findChildren<QPushButton *>())
            if (button->isEnabled())
                enabled << button->text();
        failure = same("the enabled buttons", enabled.join(QLatin1Char(',')), argument);
    } else if (verb == "said") {
        failure = sameLines("the messages", shop.dialogs.shown.mid(m_said), argument);
        m_said = int(shop.dialogs.shown.size());
    } else if (verb == "check" || verb == "quick" || verb == "checks") {
        for (const CheckDepth depth : {CheckDepth::Full, CheckDepth::Quick}) {
            if (verb != "checks" && (depth == CheckDepth::Quick) != (verb == "quick"))
                continue;
            const CheckReport report = checkShopFile(shop.db().fileName(), depth);
            QStringList found;
            for (const Finding &finding : report.traces)
                found << finding.kind + ": " + finding.rows;
            for (const Finding &finding : report.notices)
                found << "Noted: " + finding.kind + ": " + finding.rows;
            const QString differs = sameLines(depth == CheckDepth::Full ? "the check's findings" : "the quick check's", found + report.damage, argument);
            failure += (failure.isEmpty() || differs.isEmpty() ? "" : "; ") + differs;
        }
    } else if (verb == "cut") {
        m_cut = argument.toInt();
    } else if (verb == "lose") {
        m_lose = argument.toInt();
    } else if (verb == "lost") {
        shop.endServerConnections();
    } else if (verb == "lock") {
        m_lock = std::make_unique<SqliteFile>(shop.file(), SqliteFile::Access::ReadWrite);
        m_lock->execute(QStringLiteral("begin immediate"));
    } else if (verb == "unlock") {
        m_lock.reset(); // its transaction rolled back
    } else if (verb == "sql") {
        failure = same(argument.section(" => ", 0, 0), shown(shop.rows(argument.section(" => ", 0, 0))), shown(table(argument.section(" => ", 1))));
    } else if (verb == "printed") {
        failure = same("the printout", printout(), argument.split(QStringLiteral(" | ")).join(QStringLiteral("\r\n")) + "\r\n");
    } else if (verb == "changed") {
        const Snapshot after = snapshot();
        QStringList expected = argument.split(QLatin1Char(','), Qt::SkipEmptyParts), actual;
        for (auto table = after.cbegin(); table != after.cend(); ++table) {
            const auto &was = m_before.value(table.key()), &now = table.value();
            int added = 0, removed = 0, updated = 0;
            for (auto it = now.cbegin(); it != now.cend(); ++it)
                !was.contains(it.key()) ? ++added : (was.value(it.key()) != it.value() ? ++updated : 0);
            for (auto it = was.cbegin(); it != was.cend(); ++it)
                removed += now.contains(it.key()) ? 0 : 1;
            QString counts = table.key();
            for (const auto &[sign, count] : QList<std::pair<char, int>>{{'+', added}, {'-', removed}, {'~', updated}})
                counts += count ? QStringLiteral(" %1%2").arg(sign).arg(count) : QString();
            if (counts != table.key())
                actual << counts;
        }
        m_before = after;
        for (QString &part : expected)
            part = part.simplified();
        expected.sort();
        actual.sort();
        failure = same("the rows changed", actual.join(", "), expected.join(", "));
    } else {
        failure = "a step the runner does not know: " + verb;
    }
    CHECK(failure.isEmpty(), failure);
}

} // namespace vantrel::test
