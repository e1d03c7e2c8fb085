#include "app/commandline.h"

#include "version.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

// Qt's own options, as its application objects and platform plugins take them: the name, and
// whether a value follows.
struct QtOption
{
    QStringView name;
    bool takesValue;
};

constexpr QtOption qtOptions[] = {
    {u"style", true},         {u"stylesheet", true},   {u"widgetcount", false},
    {u"reverse", false},      {u"platform", true},     {u"platformpluginpath", true},
    {u"platformtheme", true}, {u"plugin", true},       {u"qwindowgeometry", true},
    {u"qwindowicon", true},   {u"qwindowtitle", true}, {u"session", true},
    {u"display", true},       {u"geometry", true},     {u"title", true},
    {u"icon", true},          {u"name", true},         {u"visual", true},
    {u"nograb", false},       {u"dograb", false},      {u"qmljsdebugger", false},
    {u"fontengine", false},   {u"testability", false},
};

const QString usage = u"Usage: eventtimer [--hidden] [Qt's options such as -style NAME]\n"_s;

const QString description =
    u"Event Timer: today's recurring events of the game, one row per section on a day\n"
    u"that scrolls sideways; one click copies an event's chat link. Settings:\n"
    u"$XDG_CONFIG_HOME/tolmerkvarn/eventtimer.conf; downloads:\n"
    u"$XDG_CACHE_HOME/tolmerkvarn/eventtimer/; shared with companion programs:\n"
    u"$XDG_DATA_HOME/tolmerkvarn.eventtimer/suite.json."_s;

const QString options =
    u"Options:\n"
    u"  --hidden    Start without showing the window: in the tray where there is one;\n"
    u"              starting the program again shows it.\n"
    u"  -h, --help  Show this help.\n"
    u"  --version   Show the version.\n"
    u"Qt's own options work as in every Qt program: -style NAME, -stylesheet FILE,\n"
    u"-platform NAME, -reverse, -qwindowgeometry WxH+X+Y, …\n"_s;

// "-style", "--style" and "-style=Fusion" all name Qt's option "style".
const QtOption *qtOption(const QString &argument)
{
    if (!argument.startsWith(u'-') || argument.size() < 2)
        return nullptr;
    QStringView name = QStringView(argument).mid(argument.startsWith(u"--") ? 2 : 1);
    if (const qsizetype equals = name.indexOf(u'='); equals >= 0)
        name = name.first(equals);
    for (const QtOption &option : qtOptions)
        if (option.name == name)
            return &option;
    return nullptr;
}

} // namespace

QStringList CommandLine::withoutQtOptions(const QStringList &arguments)
{
    QStringList ours;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const QtOption *option = qtOption(argument);
        if (!option) {
            ours.append(argument);
            continue;
        }
        // A value joined with "=" or none needed; else the next argument is the value, which
        // must be there.
        if (option->takesValue && !argument.contains(u'=')) {
            if (++i == arguments.size()) {
                ours.append(argument); // refused below, as an option without its value
                break;
            }
        }
    }
    return ours;
}

CommandLine CommandLine::parse(const QStringList &arguments)
{
    CommandLine result;
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help(QStringList{u"h"_s, u"help"_s});
    const QCommandLineOption version(u"version"_s);
    const QCommandLineOption hidden(u"hidden"_s);
    parser.addOptions({help, version, hidden});
    const bool parsed = parser.parse(QStringList{u"eventtimer"_s} + withoutQtOptions(arguments));
    if (!parsed || !parser.positionalArguments().isEmpty()) {
        const QString problem =
            !parsed ? parser.errorText()
                    : u"unexpected argument "_s + parser.positionalArguments().first();
        result.err = u"eventtimer: "_s + problem + u'\n' + usage;
        result.exitStatus = 2;
        return result;
    }
    if (parser.isSet(help)) {
        result.out = usage + u'\n' + description + u"\n\n"_s + options;
        result.exitStatus = 0;
    } else if (parser.isSet(version)) {
        result.out = u"eventtimer " EVENTTIMER_VERSION "\n"_s;
        result.exitStatus = 0;
    }
    result.hidden = parser.isSet(hidden);
    return result;
}

} // namespace eventtimer
