#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

namespace vantrel {

// The program's message boxes: plain information with an OK button, Yes/No questions and a
// choice from a list.
// Injectable so that tests script the answers and read the messages.
class Dialogs {
public:
    virtual ~Dialogs() = default;
    virtual void inform(const QString &message) = 0;
    // True only when the operator answers Yes; No is the default answer.
    virtual bool ask(const QString &question) = 0;
    // The operator's pick among ITEMS, as its index; -1 when the choice was dropped.
    virtual int choose(const QString &question, const QStringList &items)
    {
        Q_UNUSED(question);
        Q_UNUSED(items);
        return -1;
    }
    // A day, asked with PROPOSED filled in; an invalid date when the question was dropped.
    virtual QDate askDate(const QString &question, const QDate &proposed)
    {
        Q_UNUSED(question);
        return proposed;
    }
    // Whether to print a printout shown first (the preview); yes unless the dialogs show it.
    virtual bool previewPrintout(const QString &document, const QStringList &lines)
    {
        Q_UNUSED(document);
        Q_UNUSED(lines);
        return true;
    }
};

} // namespace vantrel
