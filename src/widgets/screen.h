#pragma once

#include "heldboxes.h"
#include "output/printout.h"
#include "services.h"

#include <QWidget>
#include <functional>

class QComboBox;
class QFormLayout;
class QLineEdit;
class QPushButton;

namespace vantrel {

class Grid;

// The base of every screen shown inside the main window. A screen is made once, lives until
// its close button or close box unloads it, and is told each time it becomes the active screen.
// Its event handlers run through guard(): an UnhandledError ends the handler there, and its
// message goes to the program's unhandled-error handler (statements already run stay written).
class Screen : public QWidget {
    Q_OBJECT
public:
    Screen(Services &services, const QString &caption, QWidget *parent = nullptr);

    // Runs each time the screen becomes the active child of the main window.
    virtual void activated() {}
    // In a closed year's window: whatever of the screen would write is disabled. The screens
    // offered there only read, but for these.
    virtual void makeReadOnly() {}

    // Runs one action of the screen; never lets an exception out.
    void guard(const std::function<void()> &action);
    // The books' server was lost (MESSAGE says how): the operator is told and asked to try again
    // until the connections are back, or to end the program.
    void waitForServer(QString message);

    // Unloads the screen (its window is closed and deleted).
    void closeScreen();

    Services &services() const { return m_services; }

    // Whether the screen's window takes the main window's whole area (a screen of lists and
    // grids), or keeps the size its fields ask for (a short form).
    bool fillsArea() const { return m_fillsArea; }
    // The keys of this screen, for the status line.
    QString keysHint() const { return m_keysHint; }
    // The keys that work on every screen.
    static QString menuKeys();

protected:
    Database &db() const { return m_services.db; }
    Dialogs &dialogs() { return m_boxes; }

    // Runs STATEMENTS as one action on the books (Database::beginAction): no other counter's
    // action comes between them, and the information boxes they show are held until it has
    // ended (shown then, or dropped when nothing of it was kept). A failure ends the action
    // keeping what ran before it, and goes on to the handler's edge. Ask before acting.
    void act(const std::function<void()> &statements);

    // Connects a signal to a handler of the screen, or of a helper the screen owns, run through
    // guard(). The handler takes the signal's arguments or none.
    template <typename Sender, typename Signal, typename Receiver, typename... Args>
    void on(Sender *sender, Signal signal, Receiver *receiver, void (Receiver::*handler)(Args...))
    {
        connect(sender, signal, receiver, [this, receiver, handler](Args... args) { guard([&] { (receiver->*handler)(args...); }); });
    }
    template <typename Sender, typename Signal, typename Derived, typename... Args>
    void on(Sender *sender, Signal signal, void (Derived::*handler)(Args...))
    {
        on(sender, signal, static_cast<Derived *>(this), handler);
    }

    // A text field named for screen readers by its on-screen label (or role, when it has none).
    QLineEdit *makeField(const QString &accessibleName, const QString &objectName = {});
    // The party search of every screen that has one: the parties whose name begins with the
    // field's text fill LIST, which shows under the field. Throws UnhandledError.
    void searchParties(QLineEdit *field, Grid *list);
    // A labelled field as a row of a form: the label on the left, the field named by it.
    QLineEdit *addField(QFormLayout *form, const QString &label, const QString &objectName = {});
    // A combo box as a row of a form: LABEL (its "&" marks the key that reaches the box) on the
    // left, the box named by the label's words.
    QComboBox *addChoice(QFormLayout *form, const QString &label);
    // A grid named by its role, inside PARENT (the screen itself when null); rows it fails to
    // read later go to the unhandled-error handler.
    Grid *makeGrid(const QString &accessibleName, QWidget *parent = nullptr);
    // Sends PRINTOUT where the settings say (see deliverPrintout), after the preview when the
    // settings want one (Dialogs answers whether to print), and tells the operator on the status
    // line which DOCUMENT went there and how many lines it took, or why it did not go (dropped
    // at the preview; refused by the queue, told in a message box too, naming the printer and the
    // print system's reason). The screen keeps its document either way. Throws UnhandledError
    // when the printer file cannot be written.
    void printLines(const QString &document, const Printout &printout);
    void keepNaturalSize() { m_fillsArea = false; }
    // The screen's own keys, before the ones every screen has.
    void setKeysHint(const QString &ownKeys);
    // Numbers line up on the right in these fields (their texts are as the system writes them).
    static void alignNumbers(std::initializer_list<QLineEdit *> fields);
    // The close button: unloads the screen.
    QPushButton *makeCloseButton(const QString &caption, const QString &objectName = {});
    // Every character typed anywhere on the screen reaches its field in upper case.
    void upperCaseTyping();

    // The first time the screen shows, Enter as well as Space presses a focused button.
    void showEvent(QShowEvent *event) override;

private:
    Services &m_services;
    HeldBoxes m_boxes{m_services.dialogs};
    bool m_fillsArea = true;
    QString m_keysHint = menuKeys();
};

} // namespace vantrel
