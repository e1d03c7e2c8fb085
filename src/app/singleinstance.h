#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <memory>

namespace eventtimer {

// One program per user: the first start holds a lock (in the user's runtime folder) and
// listens on a local socket beside it; a later start finds the lock taken, asks the first to
// show its window, and ends. A lock left by a program that crashed is stale and taken over, and
// so is its socket. Two programs therefore never write the settings, cache or suite at once.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(const QString &name, QObject *parent = nullptr);
    ~SingleInstance() override;

    // Takes the lock; true when this is the first program.
    bool claim();
    // From a later program: asks the first to show its window; false when it does not answer.
    bool activateFirst();

Q_SIGNALS:
    // A later start asked for the window.
    void activationRequested();

private:
    QString m_socketPath;
    QLockFile m_lock;
    std::unique_ptr<QLocalServer> m_server;
};

} // namespace eventtimer
