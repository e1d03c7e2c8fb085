// eventtimer-localeventservice: serves an event document and a folder of icons on loopback, for the
// demo and for trying documents out.
#include "localeventservice/localeventservice.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSslCertificate>
#include <QSslKey>
#include <QTextStream>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"eventtimer-localeventservice"_s);

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Serves an event document at /api/events/sequence and the files of a folder, over "
        u"plain HTTP on 127.0.0.1. \"{service}\" in the document is replaced by the service's "
        u"own address, so icons can be served from the folder. Prints the address, then serves "
        u"until stopped."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"document"_s, u"The event document (JSON) to serve."_s);
    const QCommandLineOption files(u"files"_s, u"Serve the files of <folder> under their paths."_s,
                                   u"folder"_s);
    const QCommandLineOption port(u"port"_s, u"Listen on <port> (default: a free one)."_s,
                                  u"port"_s, u"0"_s);
    const QCommandLineOption delay(u"delay"_s, u"Answer every request <ms> late."_s, u"ms"_s,
                                   u"0"_s);
    const QCommandLineOption certificate(
        u"certificate"_s, u"Serve HTTPS with the PEM certificate in <file> (needs --key)."_s,
        u"file"_s);
    const QCommandLineOption key(u"key"_s, u"The PEM private key of the certificate."_s, u"file"_s);
    parser.addOptions({files, port, delay, certificate, key});
    parser.process(app);

    QTextStream err(stderr);
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1) {
        err << "eventtimer-localeventservice: give exactly one document file (see --help)"
            << Qt::endl;
        return 2;
    }
    if (!QFileInfo(positional.first()).isReadable()) {
        err << "eventtimer-localeventservice: cannot read " << positional.first() << Qt::endl;
        return 2;
    }
    bool portOk = false;
    const uint portNumber = parser.value(port).toUInt(&portOk);
    bool delayOk = false;
    const int delayMs = parser.value(delay).toInt(&delayOk);
    if (!portOk || portNumber > 65535 || !delayOk || delayMs < 0) {
        err << "eventtimer-localeventservice: --port takes 0 to 65535 and --delay a number of "
               "milliseconds"
            << Qt::endl;
        return 2;
    }

    eventtimer::LocalEventService service;
    if (parser.isSet(certificate) != parser.isSet(key)) {
        err << "eventtimer-localeventservice: --certificate and --key go together" << Qt::endl;
        return 2;
    }
    if (parser.isSet(certificate)) {
        QFile certificateFile(parser.value(certificate));
        QFile keyFile(parser.value(key));
        if (!certificateFile.open(QIODevice::ReadOnly) || !keyFile.open(QIODevice::ReadOnly)) {
            err << "eventtimer-localeventservice: cannot read the certificate or its key"
                << Qt::endl;
            return 2;
        }
        const QByteArray keyText = keyFile.readAll();
        QSslKey privateKey(keyText, QSsl::Ec);
        if (privateKey.isNull())
            privateKey = QSslKey(keyText, QSsl::Rsa);
        service.useTls(QSslCertificate(certificateFile.readAll()), privateKey);
    }
    service.setDocumentFile(positional.first());
    if (parser.isSet(files))
        service.setFilesFolder(parser.value(files));
    service.setBehaviour(u"*"_s, {.delayMs = delayMs});
    if (!service.listen(static_cast<quint16>(portNumber))) {
        err << "eventtimer-localeventservice: cannot listen on port " << portNumber << Qt::endl;
        return 1;
    }
    QTextStream(stdout) << service.baseUrl().toString() << Qt::endl;
    return app.exec();
}
