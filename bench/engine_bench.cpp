#include "bench/ratios.h"
#include "plugin/csvp_webinterface.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

// Opening and checking casts through the plug-in's slot, as a page does it.

namespace {

const QString service = QStringLiteral("SVP_WebInterface");

QByteArray castText(qint64 levels)
{
    QByteArray text = "( SoundVelocity 1.0 0 20261115123456 59.5 10.25 0 0 0 bench NA " +
                      QByteArray::number(levels) + " )\r\n";
    for (qint64 i = 0; i < levels; ++i)
        text += QByteArray::number(double(i) * 0.11, 'f', 2) + ' ' +
                QByteArray::number(1480.0 + double(i % 997) * 0.037, 'f', 3) + "\r\n";
    return text;
}

QString castName(qint64 levels)
{
    return QStringLiteral("cast%1.asvp").arg(levels);
}

/// The engine on a data folder that holds a cast of each length.
class Bench
{
  public:
    Bench()
    {
        qputenv("ProgramData", QFile::encodeName(m_folder.path()));
        plugin = std::make_unique<CSVP_WebInterface>();
        for (const qint64 levels : {1000, 10000, 100000}) {
            QFile file(m_folder.filePath(QStringLiteral("Ardentide/qrvdata/svp_abscoeff/")) +
                       castName(levels));
            if (!file.open(QIODevice::WriteOnly) || file.write(castText(levels)) < 0)
                qFatal("cannot write the casts");
        }
        QObject::connect(plugin.get(), &CSVP_WebInterface::sendWSPacket, plugin.get(),
                         [this](const QString&, const QByteArray& json) { packet = json; });
    }

    QByteArray request(const QString& data)
    {
        plugin->requestWebSocket(1, service, data);
        return packet;
    }

    QByteArray open(qint64 levels)
    {
        return request(QStringLiteral("b,ACTION=SVP_WebInterface/SVP_OpenSVP,[%1,asvp]")
                           .arg(castName(levels)));
    }

    static Bench& instance()
    {
        static Bench bench;
        return bench;
    }

    std::unique_ptr<CSVP_WebInterface> plugin;
    QByteArray packet;

  private:
    QTemporaryDir m_folder;
};

void open(benchmark::State& state)
{
    Bench& bench = Bench::instance();
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.open(state.range(0)));
}

// The baseline: what the library alone takes to write the same reply.
void toJson(benchmark::State& state)
{
    const QJsonDocument document = QJsonDocument::fromJson(Bench::instance().open(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(document.toJson());
}

void check(benchmark::State& state)
{
    QStringList depths;
    QStringList speeds;
    for (qint64 i = 0; i < state.range(0); ++i) {
        depths.append(QString::number(double(i) * 0.11, 'f', 2));
        speeds.append(QString::number(1480.0 + double(i % 997) * 0.037, 'f', 3));
    }
    const QString request =
        QStringLiteral("b,ACTION=SVP_WebInterface/CheckProfile,[") + speeds.join(QLatin1Char(',')) +
        QLatin1Char(';') + depths.join(QLatin1Char(',')) +
        QStringLiteral(";0;0;0;0;0*f*SoundVelocity*1*0*20261115123456*59*10*0*0*"
                       "0*s*NA*2*NA]");
    Bench& bench = Bench::instance();
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.request(request));
}

BENCHMARK(open)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(check)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(toJson)->Arg(1000)->Arg(10000)->Arg(100000);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return runWithRatios(
        argc, argv,
        {
            {"open: time per level, 100 000 against 1 000", "open/100000", "open/1000", 0.01, 1.5},
            {"check: time per level, 100 000 against 1 000", "check/100000", "check/1000", 0.01,
             1.5},
            {"reply: time per level, 100 000 against 1 000", "toJson/100000", "toJson/1000", 0.01,
             1.5},
            {"open against writing the same reply, 1 000", "open/1000", "toJson/1000", 1.0, 3.0},
            {"open against writing the same reply, 10 000", "open/10000", "toJson/10000", 1.0, 3.0},
            {"open against writing the same reply, 100 000", "open/100000", "toJson/100000", 1.0,
             3.0},
        });
}
