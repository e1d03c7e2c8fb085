#include "data/settingsstore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

constexpr std::chrono::milliseconds settleTime{150};

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

SettingsStore::SettingsStore(QString fileName, QTextStream &err, QObject *parent)
    : QObject(parent)
    , m_fileName(std::move(fileName))
    , m_err(err)
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        rewatch();
        if (contents(m_fileName) == m_written)
            return;
        reload();
        Q_EMIT changedOnDisk();
    });
    open();
}

SettingsStore::~SettingsStore() = default;

QString SettingsStore::standardPath()
{
    // By its path: Qt would name an INI file of the user scope ".ini".
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/tolmerkvarn/eventtimer.conf"_s;
}

void SettingsStore::open()
{
    // A QSettings that once met a damaged file says so for ever, and a new one for the same
    // file says nothing while Qt still holds it parsed: the file is damaged from the moment one
    // says so until its text changes.
    m_settings = std::make_unique<QSettings>(m_fileName, QSettings::IniFormat);
    const QByteArray text = contents(m_fileName);
    if (m_settings->status() == QSettings::FormatError)
        m_damagedText = text;
    else if (m_damagedText != text)
        m_damagedText.reset();
    if (isDamaged()) {
        setProblem(u"the settings file "_s + m_fileName +
                   u" cannot be read; it is left as it is, and nothing is saved to it"_s);
    } else if (m_problem.contains(u"cannot be read"_s)) {
        setProblem({});
    }
}

void SettingsStore::reload()
{
    open();
}

QVariant SettingsStore::value(QStringView key, const QVariant &byDefault) const
{
    return m_settings->value(key.toString(), byDefault);
}

Status SettingsStore::write(std::initializer_list<std::pair<QStringView, QVariant>> values)
{
    open();
    if (isDamaged())
        return Error{m_problem};
    for (const auto &[key, value] : values) {
        // QSettings would write an empty list as "@Invalid()".
        const bool emptyList =
            value.typeId() == QMetaType::QStringList && value.toStringList().isEmpty();
        m_settings->setValue(key.toString(), emptyList ? QVariant(QString()) : value);
    }
    QDir().mkpath(QFileInfo(m_fileName).path());
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError) {
        const QString failure = u"cannot write the settings file "_s + m_fileName +
                                u"; changes last until Event Timer ends"_s;
        setProblem(failure);
        open(); // what the file holds, not what could not be written
        return Error{failure};
    }
    m_written = contents(m_fileName);
    setProblem({});
    return {};
}

void SettingsStore::watch()
{
    if (m_watcher)
        return;
    m_watcher = std::make_unique<QFileSystemWatcher>();
    connect(m_watcher.get(), &QFileSystemWatcher::fileChanged, &m_settle,
            qOverload<>(&QTimer::start));
    connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, &m_settle,
            qOverload<>(&QTimer::start));
    m_written = contents(m_fileName);
    rewatch();
}

void SettingsStore::rewatch()
{
    // An editor that saves by replacing the file leaves the watcher on the old one; the folder
    // tells when the file comes back.
    if (!m_watcher)
        return;
    const QString folder = QFileInfo(m_fileName).path();
    QDir().mkpath(folder);
    if (!m_watcher->directories().contains(folder))
        m_watcher->addPath(folder);
    if (QFileInfo::exists(m_fileName) && !m_watcher->files().contains(m_fileName))
        m_watcher->addPath(m_fileName);
}

void SettingsStore::setProblem(const QString &problem)
{
    if (problem == m_problem)
        return;
    m_problem = problem;
    if (!problem.isEmpty())
        m_err << "eventtimer: " << problem << Qt::endl;
    Q_EMIT problemChanged(problem);
}

} // namespace eventtimer
