#pragma once

#include "datagram/conversion.h"
#include "datagram/thinrequest.h"
#include "plugin/webinterface.h"
#include "processing/atlas.h"
#include "processing/svpmodel.h"
#include "profile/decimalcounts.h"
#include "profile/openprofile.h"
#include "profile/profilefolder.h"
#include "settings/cdatafile.h"
#include "settings/defaultsettings.h"
#include "settings/reportformat.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QStringRef>
#include <QVector>

#include <string>
#include <vector>

class QUdpSocket;

/// The engine as its host sees it: one object that opens, checks and answers.
///
/// It keeps no profile between requests: opening returns the whole profile, and each later action
/// gets it again in its request. All calls come on the thread that owns the object, one at a time;
/// replies are emitted from within the call. Nothing at start-up is fatal, and nothing is thrown
/// to the host.
class CSVP_WebInterface : public WebInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.ardentide.svpwebinterfacelib")
    Q_INTERFACES(WebInterface)

  public:
    /// Binds the input socket, makes or loads the settings file and puts the default extension
    /// profile into the data folder where it is missing.
    explicit CSVP_WebInterface(QObject* parent = nullptr);
    ~CSVP_WebInterface() override;
    Q_DISABLE_COPY(CSVP_WebInterface)

    QStringList getRegisterWebSocket() override;
    QStringList getRegisterPost() override;

    /// The report message stored under `key`, its "%d" and "%.2f" filled from the arguments (see
    /// `settings::formatReport`), every backslash turned into "/". Empty for a missing key.
    template <typename... Arguments>
    std::string GetReportErr(const char* key, const Arguments&... arguments)
    {
        return reportMessage(key, {settings::ReportArgument(arguments)...});
    }

    /// UDP port of the input socket.
    static constexpr quint16 inputPort = 15060;

    /// Takes a datagram as if it had come in at the input port: a "$TXQRV," sentence is handed to
    /// `HandleTXQRVDatagrams`, anything else is dropped.
    void processUdpDatagram(const QByteArray& datagram);

    /// Interprets "$TXQRV,350,<path>,<identifier>": acknowledges it to the peer process at once and
    /// opens the file that the identifier names (".asvp" where it has no suffix). The reply of the
    /// open goes to the last target. Other sentences are ignored, missing fields logged.
    void HandleTXQRVDatagrams(const QByteArray& datagram);

    /// Writes a finished file body to `path`, see `datagram::saveOtherFile`.
    bool handleSaveOtherFiles(const QString& path, const QByteArray& content, bool keepBackup);

    /// Limits of sound speed and temperature from the settings file.
    const settings::ProfileLimits& limits() const { return profileLimits; }

    /// Why the last open, or the last writing of a datagram file, failed; empty after one that did
    /// not.
    QString lastErrorText() const { return postErrorText; }

    /// Whether the profile in a send request may leave unchanged. `message` is set when the
    /// request has the wrong number of pieces, else left as it is.
    bool QuickCheck(QString& message, const QString& body);

    /// How far apart two profiles lead their rays: depths (m) and sound speeds (m/s), index for
    /// index. Only their valid samples are looked at, so that a profile that needs a fix can be
    /// compared as well. For each horizontal range of `raytrace::ranges` a key "err10"…"err10000"
    /// with a pair of texts for each of `raytrace::launchAngles`: the depths at which the two rays
    /// first reach that range, two decimals, "nan" for one that does not; then "result"
    /// "SUCCESS". "FAILURE" with "Cannot calculate differences." when a profile has fewer than two
    /// valid samples, or with "Memory allocation error". Empties the working buffers.
    QJsonObject makeJsonCompareSVP(const QVector<float>& depth1, const QVector<float>& speed1,
                                   const QVector<float>& depth2, const QVector<float>& speed2);

    /// Verifies and converts a datagram, see `datagram::calcS00`. When a rule fails, the result is
    /// empty, its report message is appended to the pending alerts, and the profile converted
    /// before stays the one that `getFromS00` reads.
    datagram::ConvertedProfile calcS00(const QByteArray& text);

    /// One value of the profile converted last, see `datagram::getFromS00`.
    double getFromS00(int index, int vector) const;

    /// Whether what is wrong with the table of import filters is told to the front end.
    enum class FilterFaults
    {
        Sent,
        Silent
    };

    /// The valid rows of the user's table of import filters, read from its file at each call, as
    /// the table writes them; none when the file cannot be opened. Unless `faults` says
    /// otherwise, "File not opened." or the fault of each row that is left out goes out as a
    /// failure of GetAllFilters.
    QStringList getSvpFilters(FilterFaults faults = FilterFaults::Sent);

    /// Appends an alert text to the pending ones, which are sent after the reply of this turn;
    /// texts of one turn are separated by a line feed.
    void addPendingAlert(const std::string& text);

    /// Empties the working buffers of the processing actions.
    void blankSVP();

    /// Writes the default settings into the store and, when `path` (UTF-8) is not empty, to that
    /// file. Always true: a file that cannot be written leaves the defaults in memory.
    bool GenerateDefaultINI(const std::string& path);

    /// Whether the settings file `path` (UTF-8) is outdated, missing or unreadable.
    static bool fnCheckVersionINI(const std::string& path);

  Q_SIGNALS:
    /// Answer to the POST of `connection`: the whole HTTP response.
    void sendPostResponse(int connection, QByteArray response);
    /// One reply or unsolicited message, as indented JSON, for the pages registered as `target`.
    void sendWSPacket(QString target, QByteArray json);

  public Q_SLOTS:
    /// One message of a page: "x,ACTION=SVP_WebInterface/<action>,<body>". Served when `name` is
    /// registered, in any case; replies go to `name` from then on.
    void requestWebSocket(int connection, QString name, QString data) override;
    /// A whole HTTP POST: request line, headers and body.
    void requestPost(int connection, const QByteArray& request);
    /// Reads the datagrams that wait at the input socket.
    void readPendingDatagrams();

  private:
    using Handler = void (CSVP_WebInterface::*)(const QString& body);
    struct Action
    {
        QLatin1String name;
        QLatin1String whoami; // under which it answers
        Handler handler;
    };
    static const std::vector<Action>& actionTable();

    void bindInputSocket();
    void loadSettings();
    void provideExtensionProfile();

    void dispatch(const QString& data);
    void send(const QJsonObject& reply);
    void handleAlert(std::string& text);
    std::string reportMessage(const char* key, const std::vector<settings::ReportArgument>& values);

    void sendToSurveySystem(const QByteArray& datagram);
    void saveAsvp(const QVector<QStringRef>& pieces);
    void refuseSave(const QString& reason);
    void answerSaved(const QString& path);
    bool readFilters(QStringList& rows, FilterFaults faults);
    void answerExtended(QLatin1String whoami);
    QString writeProfile(const datagram::ThinRequest& request, const profile::ValueLists& lists,
                         const QString& ending, QString& path);
    QString extendForFix(const datagram::ThinRequest& request, bool fromAtlas,
                         const QString& salinityFile, const QString& temperatureFile);
    void answerPairList(QLatin1String whoami, const QString& body, const QString& done);

    void handleOpenRequest(const QString& body);
    bool storeUpload(const profile::ProfileFolder& folder, const QString& name,
                     const QByteArray& content);
    profile::OpenedProfile openDatagramFile(const QByteArray& content, const QString& name);
    datagram::Conversion convert(const QByteArray& text);
    bool handleOpenSVP(const QString& body, const QByteArray& content);
    void handleSave(const QString& body);
    void handleSaveAs(const QString& body);
    void handleSendSVPtoQRV(const QString& body);
    void handleCloseSVP(const QString& body);
    void handleFixProfile(const QString& body);
    void handleExtendWithFile(const QString& body);
    void handleExtendDefault(const QString& body);
    void handleExtendTempSal(const QString& body);
    void handleThin(const QString& body);
    void handleRVT300(const QString& body);
    void handleDistribute(const QString& body);
    void handleShowRaypath(const QString& body);
    void handleSaveFilter(const QString& body);
    void handleGetAllFilters(const QString& body);
    void handleDeleteFilter(const QString& body);
    void handleCheckProfile(const QString& body);
    void handleSelectExtentionFile(const QString& body);
    void handleReady(const QString& body);
    void handleReadyConnected();
    void handleDelayedAlert(const QString& body);

    QStringList postNames;
    QStringList webSocketNames;
    QStringList svpFilters;
    QString replyTarget;
    QString postErrorText;    // why the last open or datagram file failed
    std::string pendingAlert; // sent and emptied by handleAlert
    CDataFile settings;
    settings::ProfileLimits profileLimits;
    profile::DecimalCounts decimals;
    datagram::ConvertedProfile convertedProfile;
    std::string reportText; // last formatted report message
    processing::CSVPModel model;
    processing::WorldOceanAtlas atlas; // keeps the files that it has read
    QUdpSocket* udpSocket = nullptr;
};
