#pragma once

#include <QCoreApplication>
#include <QObject>

namespace vantrel {

// An event filter over the whole application for as long as it lives: it sees every event
// before the watchers of the object it is for, fields made later included.
class ApplicationFilter : public QObject {
public:
    explicit ApplicationFilter(QObject *parent) : QObject(parent) { QCoreApplication::instance()->installEventFilter(this); }
    ~ApplicationFilter() override { QCoreApplication::instance()->removeEventFilter(this); }
};

} // namespace vantrel
