#include "bench/ratios.h"
#include "plugin/csvp_webinterface.h"
#include "raytrace/comparison.h"
#include "raytrace/rayengine.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>

// Rays through many layers, against what cannot be saved: at each layer the square root that gives
// the angle there, and the logarithm that gives the travel time.

namespace {

// So shallow that the flattest of the nine rays crosses every layer before its last range.
constexpr double bottom = 1700.0;

struct Profile
{
    QVector<float> depths;
    QVector<float> speeds;
};

Profile profileOf(qint64 levels)
{
    Profile profile;
    for (qint64 i = 0; i < levels; ++i) {
        profile.depths.append(float(bottom * double(i) / double(levels - 1)));
        // Slower downward on the whole, so that no ray turns, and rough.
        profile.speeds.append(
            float(1520.0 - 25.0 * double(i) / double(levels) + double(i * 7919 % 97) * 0.01));
    }
    return profile;
}

raytrace::Layers layersOf(qint64 levels)
{
    const Profile profile = profileOf(levels);
    return raytrace::makeLayers(profile.depths.constData(), profile.speeds.constData(),
                                std::size_t(levels));
}

void ray(benchmark::State& state)
{
    raytrace::RayEngine engine(layersOf(state.range(0)));
    if (engine.path(raytrace::radians(30)).size() < std::size_t(state.range(0)))
        state.SkipWithError("the ray does not reach the bottom");
    for (auto _ : state)
        benchmark::DoNotOptimize(engine.path(raytrace::radians(30)));
}

void comparison(benchmark::State& state)
{
    const Profile profile = profileOf(state.range(0));
    raytrace::RayEngine engine(layersOf(state.range(0)));
    for (const double angle : raytrace::launchAngles) {
        if (engine.path(angle).size() < std::size_t(state.range(0)))
            state.SkipWithError("a ray does not reach the bottom");
    }
    CSVP_WebInterface plugin;
    for (auto _ : state)
        benchmark::DoNotOptimize(plugin.makeJsonCompareSVP(profile.depths, profile.speeds,
                                                           profile.depths, profile.speeds));
}

// The baseline for as many rays as its second argument says.
void rootsAndLogarithms(benchmark::State& state)
{
    const raytrace::Layers layers = layersOf(state.range(0));
    for (auto _ : state) {
        for (qint64 i = 0; i < state.range(1); ++i) {
            const double snell = std::cos(raytrace::radians(30)) / layers[0].c;
            double sum = 0.0;
            for (const raytrace::LayerRecord& layer : layers) {
                const double sine = snell * layer.c;
                sum += std::log(std::sqrt((1.0 - sine) * (1.0 + sine)));
            }
            benchmark::DoNotOptimize(sum);
        }
    }
}

BENCHMARK(ray)->Arg(1000)->Arg(10000);
BENCHMARK(comparison)->Arg(1000)->Arg(10000);
BENCHMARK(rootsAndLogarithms)->Args({1000, 1})->Args({1000, 18});

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    qputenv("ProgramData", QFile::encodeName(folder.path()));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    return runWithRatios(
        argc, argv,
        {
            {"a ray through 1 000 layers against its roots and logs", "ray/1000",
             "rootsAndLogarithms/1000/1", 1.0, 3.0},
            {"comparison (2 x 9 rays) against its roots and logs", "comparison/1000",
             "rootsAndLogarithms/1000/18", 1.0, 3.0},
            {"a ray: time per layer, 10 000 against 1 000", "ray/10000", "ray/1000", 0.1, 1.5},
            {"comparison: time per layer, 10 000 against 1 000", "comparison/10000",
             "comparison/1000", 0.1, 1.5},
        });
}
