#include "ui/file_saves_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSlider>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "configuration/file_saves_texts.h"
#include "engine/format_selection.h"

namespace ovd::ui {

namespace {

using configuration::FileSavesControls;
using configuration::FormatBoxes;
using configuration::FormKind;

constexpr int kAddNameCheckMs = 500;

template <typename Widget>
Widget* named(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QString q(const std::string& text) { return QString::fromStdString(text); }

void showText(QLineEdit* box, const std::string& text) {
    if (box->text() != q(text)) box->setText(q(text));
}

// An editable list box: the entry of the text when there is one, the text as typed otherwise.
void showComboText(QComboBox* box, const std::string& text) {
    if (box->currentText() == q(text) && (box->currentIndex() >= 0 || box->isEditable())) return;
    const QSignalBlocker quiet(box);
    const int index = box->findText(q(text));
    if (index >= 0) {
        box->setCurrentIndex(index);
    } else if (box->isEditable()) {
        box->setCurrentIndex(-1);
        box->setEditText(q(text));
    } else {
        box->setCurrentIndex(-1);
    }
}

}  // namespace

FileSavesWindow::FileSavesWindow(configuration::FileSavesForm& form, FormatOptions formatOptions,
                                 QWidget* parent)
    : QDialog(parent), form_(form), formatOptions_(std::move(formatOptions)) {
    const bool tabbed = form.kind() == FormKind::Tabbed;
    setObjectName(tabbed ? "frmcfgFileSavesTab" : "frmcfgFileSaves");
    setWindowTitle(QString::fromLatin1(configuration::kFileSavesTitle));
    setModal(true);
    auto* column = new QVBoxLayout(this);
    if (tabbed) {
        tabs_ = named(new QTabWidget(this), "tabControl");
        tabs_->addTab(namingGroup(), tr("File Names"));
        tabs_->addTab(foldersGroup(), tr("Folders"));
        tabs_->addTab(formatsGroup(), tr("File Types"));
        tabs_->addTab(deliveryGroup(), tr("End Of Letter"));
        tabs_->addTab(recordingGroup(), tr("Recording"));
        tabs_->addTab(peerGroup(), tr("TCP"));
        column->addWidget(tabs_);
        auto* moves = new QHBoxLayout;
        auto* previous = named(new QPushButton(tr("<< Previous"), this), "Command6");
        auto* next = named(new QPushButton(tr("Next >>"), this), "Command7");
        auto* select = named(new QPushButton(tr("Select Tab"), this), "cmdSelectTab");
        auto* externalMic =
            named(new QPushButton(tr("Internal/External Microphone"), this), "CmdExtMic");
        // Which microphone is in use is chosen in the main window's sound box.
        externalMic->setEnabled(false);
        moves->addWidget(previous);
        moves->addWidget(next);
        moves->addWidget(select);
        moves->addStretch();
        moves->addWidget(named(new QLabel(tr("External Mic"), this), "LblExtMic"));
        moves->addWidget(externalMic);
        column->addLayout(moves);
        const auto move = [this](int by) {
            const int count = tabs_->count();
            tabs_->setCurrentIndex((tabs_->currentIndex() + by + count) % count);
        };
        connect(previous, &QPushButton::clicked, this, [move] { move(-1); });
        connect(next, &QPushButton::clicked, this, [move] { move(1); });
        connect(select, &QPushButton::clicked, this, [move] { move(1); });
    } else {
        column->addWidget(new QLabel(QString::fromLatin1(configuration::kScrollDownCaption), this));
        auto* page = new QWidget;
        auto* groups = new QVBoxLayout(page);
        for (QWidget* group : {namingGroup(), foldersGroup(), formatsGroup(), deliveryGroup(),
                               recordingGroup(), peerGroup()}) {
            groups->addWidget(group);
        }
        auto* scroll = named(new QScrollArea(this), "scrollOptions");
        scroll->setWidget(page);
        scroll->setWidgetResizable(true);
        column->addWidget(scroll);
        addNameTimer_ = new QTimer(this);
        addNameTimer_->setInterval(kAddNameCheckMs);
        connect(addNameTimer_, &QTimer::timeout, this,
                then([this] { form_.checkAddNameToFile(); }));
        addNameTimer_->start();
    }
    column->addWidget(buttonsRow());
    refresh();
    resize(tabbed ? 700 : 780, tabbed ? 520 : 720);
}

std::function<void()> FileSavesWindow::then(const std::function<void()>& handler) {
    return [this, handler] {
        handler();
        refresh();
    };
}

void FileSavesWindow::refresh() {
    for (const auto& refresher : refreshers_) refresher();
}

void FileSavesWindow::closeFromModel() {
    if (addNameTimer_ != nullptr) addNameTimer_->stop();
    // Closed after the click that saved has returned.
    QTimer::singleShot(0, this, [this] { accept(); });
}

QWidget* FileSavesWindow::namingGroup() {
    const bool scrolling = form_.kind() == FormKind::Scrolling;
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);

    auto* notice =
        named(new QLabel(QString::fromLatin1(configuration::kAddNameIsOnNotice)), "frmAddNameIsOn");
    notice->setWordWrap(true);
    column->addWidget(notice);

    auto* naming = named(new QGroupBox(tr("Default Naming Convention")), "Frame1");
    auto* grid = new QGridLayout(naming);
    auto* addLabel =
        named(new QCheckBox(tr("Add text and the date and time, or a number")), "Check1");
    auto* labelText = named(new QLineEdit, "Text3");
    grid->addWidget(addLabel, 0, 0, 1, 2);
    grid->addWidget(new QLabel(tr("Text to be added to the file names if desired:")), 1, 0);
    grid->addWidget(labelText, 1, 1);
    QCheckBox* barCode = nullptr;
    if (scrolling) {
        barCode = named(new QCheckBox(tr("Check to prompt for bar code input to add to end of "
                                         "file name for each recording.")),
                        "chksufix");
        grid->addWidget(barCode, 2, 0, 1, 2);
    }
    column->addWidget(naming);

    auto* method = named(new QGroupBox(tr("Automatic File Naming Method Used")), "Frame2");
    auto* rows = new QGridLayout(method);
    auto* dateTime = named(new QRadioButton(tr("Date Time Stamp (Default)")), "Option1");
    auto* sequential = named(new QRadioButton(tr("Sequentially Numbered")), "Option2");
    auto* number = named(new QLineEdit, "Text2");
    auto* places = named(new QLineEdit, "Text4");
    auto* reset = named(new QPushButton(tr("Reset numbering")), "Command4");
    rows->addWidget(dateTime, 0, 0, 1, 3);
    rows->addWidget(sequential, 1, 0);
    rows->addWidget(named(new QLabel(tr("starting at:")), "Label4"), 1, 1);
    rows->addWidget(number, 1, 2);
    rows->addWidget(named(new QLabel(tr("Places 1-5")), "Label6"), 2, 1);
    rows->addWidget(places, 2, 2);
    rows->addWidget(reset, 3, 2);
    column->addWidget(method);

    connect(addLabel, &QCheckBox::clicked, this,
            then([this, addLabel] { form_.setAddLabel(addLabel->isChecked()); }));
    connect(labelText, &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.setLabelText(text.toStdString()); });
    if (barCode != nullptr) {
        connect(barCode, &QCheckBox::clicked, this,
                then([this, barCode] { form_.setPromptBarCode(barCode->isChecked()); }));
    }
    connect(dateTime, &QRadioButton::clicked, this, then([this] { form_.chooseDateTimeNaming(); }));
    connect(sequential, &QRadioButton::clicked, this,
            then([this] { form_.chooseSequentialNaming(); }));
    connect(number, &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.setStartingNumber(text.toStdString()); });
    connect(number, &QLineEdit::editingFinished, this,
            then([this] { form_.leaveStartingNumber(); }));
    connect(places, &QLineEdit::textEdited, this,
            then([this, places] { form_.setPlaces(places->text().toStdString()); }));
    connect(reset, &QPushButton::clicked, this, then([this] { form_.resetNumbering(); }));

    refreshers_.push_back([=, this] {
        const FileSavesControls& c = form_.controls();
        notice->setVisible(scrolling && c.addNameNoticeShown);
        naming->setVisible(c.namingShown);
        method->setVisible(c.namingShown);
        const QSignalBlocker q1(addLabel), q2(dateTime), q3(sequential);
        addLabel->setChecked(c.addLabel);
        showText(labelText, c.labelText);
        labelText->setEnabled(c.labelTextEnabled);
        if (barCode != nullptr) {
            const QSignalBlocker q4(barCode);
            barCode->setChecked(c.promptBarCode);
        }
        dateTime->setChecked(!c.sequential);
        sequential->setChecked(c.sequential);
        showText(number, c.startingNumber);
        showText(places, c.places);
        number->setEnabled(c.numberingEnabled);
        places->setEnabled(c.numberingEnabled);
        reset->setEnabled(c.numberingEnabled);
    });
    return page;
}

QWidget* FileSavesWindow::foldersGroup() {
    auto* box = named(new QGroupBox(tr("Default Directory")), "Frame3");
    auto* grid = new QGridLayout(box);
    auto* path = named(new QLineEdit, "Text1");
    path->setReadOnly(true);
    auto* change = named(new QPushButton(tr("Change")), "Command3");
    auto* restore = named(new QPushButton(tr("Restore Default Directory")), "Command1");
    grid->addWidget(path, 0, 0);
    grid->addWidget(new QLabel(tr("<--Save          Path")), 0, 1);
    grid->addWidget(change, 1, 0);
    grid->addWidget(restore, 1, 1);
    auto* overwrite = named(new QCheckBox(tr("Suppress \"Overwrite File?\" warnings.")), "Check2");
    grid->addWidget(overwrite, 2, 0, 1, 2);
    connect(change, &QPushButton::clicked, this, then([this] { form_.changeRecordingsFolder(); }));
    connect(restore, &QPushButton::clicked, this,
            then([this] { form_.restoreRecordingsFolder(); }));
    connect(overwrite, &QCheckBox::clicked, this,
            then([this, overwrite] { form_.setSuppressWarnings(overwrite->isChecked()); }));
    refreshers_.push_back([=, this] {
        const FileSavesControls& c = form_.controls();
        showText(path, c.recordingsFolder);
        const QSignalBlocker quiet(overwrite);
        overwrite->setChecked(c.suppressWarnings);
    });
    return box;
}

QWidget* FileSavesWindow::formatsGroup() {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    for (const bool other : {false, true}) {
        const char* suffix = other ? "2" : "";
        auto* box = new QGroupBox(other ? tr("Default File Type, Other Conditions")
                                        : tr("Default File Type, Normal Conditions"));
        auto* grid = new QGridLayout(box);
        const auto boxName = [suffix](const char* base) { return std::string(base) + suffix; };
        auto* format = new QComboBox;
        format->setObjectName(q(boxName("cboFormat")));
        for (const auto name : engine::kFormatNames) format->addItem(q(std::string(name)));
        auto* frequency = new QComboBox;
        frequency->setObjectName(q(boxName("cboFreq")));
        frequency->setEditable(true);
        for (const int rate : engine::kSampleRates) frequency->addItem(QString::number(rate));
        auto* channels = new QComboBox;
        channels->setObjectName(q(boxName("cboChan")));
        channels->addItems({"MONO", "STEREO"});
        auto* bits = new QComboBox;
        bits->setObjectName(q(boxName("cboBits")));
        bits->setEditable(true);
        for (const int rate : engine::kBitRates) bits->addItem(QString::number(rate));
        auto* options = new QPushButton(tr("Options..."));
        options->setObjectName(q(boxName("cmdFormatOptions")));
        grid->addWidget(new QLabel(tr("Format")), 0, 0);
        grid->addWidget(new QLabel(tr("Frequency")), 0, 1);
        grid->addWidget(new QLabel(tr("Channel")), 0, 2);
        grid->addWidget(new QLabel(tr("Bits")), 0, 3);
        grid->addWidget(format, 1, 0);
        grid->addWidget(frequency, 1, 1);
        grid->addWidget(channels, 1, 2);
        grid->addWidget(bits, 1, 3);
        grid->addWidget(options, 1, 4);
        column->addWidget(box);

        connect(format, &QComboBox::activated, this, then([this, other, format] {
                    form_.setFormat(other, format->currentText().toStdString());
                }));
        connect(frequency, &QComboBox::currentTextChanged, this,
                [this, other](const QString& t) { form_.setFrequency(other, t.toStdString()); });
        connect(channels, &QComboBox::activated, this, [this, other, channels] {
            form_.setChannels(other, channels->currentText().toStdString());
        });
        connect(bits, &QComboBox::currentTextChanged, this,
                [this, other](const QString& t) { form_.setBitRate(other, t.toStdString()); });
        connect(options, &QPushButton::clicked, this, then([this, other] {
                    const FormatBoxes& b = other ? form_.controls().other : form_.controls().normal;
                    if (formatOptions_) formatOptions_(other, b.format);
                }));
        refreshers_.push_back([=, this] {
            const FormatBoxes& b = other ? form_.controls().other : form_.controls().normal;
            showComboText(format, b.format);
            showComboText(frequency, b.frequency);
            // The boxes hold a channel count as a digit or as a word.
            showComboText(channels, b.channels == "1"   ? "MONO"
                                    : b.channels == "2" ? "STEREO"
                                                        : b.channels);
            showComboText(bits, b.bitRate);
            frequency->setEnabled(b.frequencyEnabled);
            channels->setEnabled(b.channelsEnabled);
            bits->setEnabled(b.bitRateEnabled);
            options->setEnabled(b.format == "MP3" || b.format == "VOX" || b.format == "RAW");
        });
    }
    auto* reset = named(new QPushButton(tr("ReSet Defaults")), "Command5");
    connect(reset, &QPushButton::clicked, this, then([this] { form_.resetFormatDefaults(); }));
    column->addWidget(reset);
    column->addStretch();
    return page;
}

QWidget* FileSavesWindow::deliveryGroup() {
    const bool scrolling = form_.kind() == FormKind::Scrolling;
    auto* box = named(new QGroupBox(tr("End Of Letter Options (EOL)")), "FrameEOL");
    auto* grid = new QGridLayout(box);
    const char* checks[] = {"chkSend1", "chkSend2", "chkSend3"};
    const char* labels[] = {"Label24", "Label25", "Label30"};
    for (int n = 1; n <= (scrolling ? 3 : 2); ++n) {
        auto* send = named(new QCheckBox(tr("Auto Send Destination %1").arg(n)), checks[n - 1]);
        auto* folder = named(new QLabel, labels[n - 1]);
        grid->addWidget(send, n - 1, 0);
        grid->addWidget(folder, n - 1, 1);
        connect(send, &QCheckBox::clicked, this,
                then([this, n, send] { form_.setDestination(n, send->isChecked()); }));
        refreshers_.push_back([=, this] {
            const auto& d = form_.controls().destinations[static_cast<std::size_t>(n - 1)];
            const QSignalBlocker quiet(send);
            send->setChecked(d.on);
            folder->setText(q(d.folder));
        });
    }
    auto* email = named(new QCheckBox(tr("Auto Send Email")), "chkAutoEmail");
    auto* emailName = named(new QLabel, "lblAutoEmail");
    auto* companies = named(new QComboBox, "cboCompanyName");
    auto* ftp = named(new QCheckBox(tr("Auto Send FTP")), "chkAutoFTP");
    auto* ftpName = named(new QLabel, "lblAutoFTP");
    grid->addWidget(email, 3, 0);
    grid->addWidget(emailName, 3, 1);
    grid->addWidget(named(new QLabel(tr("Available Email")), "lblAvailableEMail"), 4, 0);
    grid->addWidget(companies, 4, 1);
    grid->addWidget(ftp, 5, 0);
    grid->addWidget(ftpName, 5, 1);
    connect(email, &QCheckBox::clicked, this,
            then([this, email] { form_.setAutoEmail(email->isChecked()); }));
    connect(ftp, &QCheckBox::clicked, this,
            then([this, ftp] { form_.setAutoFtp(ftp->isChecked()); }));
    connect(companies, &QComboBox::activated, this, [this, companies] {
        form_.chooseReceiverCompany(companies->currentText().toStdString());
    });
    refreshers_.push_back([=, this] {
        const FileSavesControls& c = form_.controls();
        const QSignalBlocker q1(email), q2(ftp), q3(companies);
        email->setChecked(c.autoEmail);
        emailName->setText(q(c.autoEmailName));
        emailName->setEnabled(c.emailGroupEnabled);
        if (companies->count() != static_cast<int>(c.receiverCompanies.size())) {
            companies->clear();
            for (const auto& company : c.receiverCompanies) companies->addItem(q(company));
            companies->setCurrentIndex(-1);
        }
        companies->setEnabled(c.emailGroupEnabled);
        ftp->setChecked(c.autoFtp);
        ftpName->setText(q(c.autoFtpName));
        ftpName->setEnabled(c.ftpGroupEnabled);
    });
    return box;
}

QWidget* FileSavesWindow::recordingGroup() {
    const bool scrolling = form_.kind() == FormKind::Scrolling;
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    int row = 0;
    const auto tick = [&](const char* name, const QString& text,
                          const std::function<void(bool)>& set,
                          const std::function<bool(const FileSavesControls&)>& get) {
        auto* box = named(new QCheckBox(text), name);
        grid->addWidget(box, row++, 0, 1, 3);
        connect(box, &QCheckBox::clicked, this, then([set, box] { set(box->isChecked()); }));
        refreshers_.push_back([this, box, get] {
            const QSignalBlocker quiet(box);
            box->setChecked(get(form_.controls()));
        });
        return box;
    };
    tick(
        "chkAutoRewind", tr("Check Mark To Activate "),
        [this](bool on) { form_.setAutoRewind(on); },
        [](const FileSavesControls& c) { return c.autoRewind; });
    auto* insert = named(new QRadioButton(tr("Auto Insert")), "optIns");
    auto* overwrite = named(new QRadioButton(tr("Auto Overwrite")), "optOver");
    auto* rewindOptions = new QWidget;
    auto* rewindRow = new QHBoxLayout(rewindOptions);
    rewindRow->addWidget(insert);
    rewindRow->addWidget(overwrite);
    grid->addWidget(rewindOptions, row++, 0, 1, 3);
    connect(insert, &QRadioButton::clicked, this, then([this] { form_.setAutoInsert(); }));
    connect(overwrite, &QRadioButton::clicked, this, then([this] { form_.setAutoOverwrite(); }));
    refreshers_.push_back([=, this] {
        const FileSavesControls& c = form_.controls();
        // Neither may show as chosen while automatic rewind is off.
        insert->setAutoExclusive(false);
        overwrite->setAutoExclusive(false);
        insert->setChecked(c.autoInsert);
        overwrite->setChecked(c.autoOverwrite);
        insert->setAutoExclusive(true);
        overwrite->setAutoExclusive(true);
        rewindOptions->setEnabled(c.autoRewind);
    });
    if (scrolling) {
        tick(
            "chkOneTapRecPause", tr("One Tap Start Record - One Tap Pause Record"),
            [this](bool on) { form_.setOneTapRecordPause(on); },
            [](const FileSavesControls& c) { return c.oneTapRecordPause; });
    }
    auto* jumpBack = named(new QLineEdit, "Text5");
    grid->addWidget(new QLabel(tr("Jump Back Secs (1 - 99)")), row, 0);
    grid->addWidget(jumpBack, row++, 1);
    connect(jumpBack, &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.setJumpBackSeconds(text.toStdString()); });
    connect(jumpBack, &QLineEdit::editingFinished, this,
            then([this] { form_.leaveJumpBackSeconds(); }));
    refreshers_.push_back([=, this] { showText(jumpBack, form_.controls().jumpBackSeconds); });
    tick(
        "chkNoLog", tr("Checked = No Logging"), [this](bool on) { form_.setNoLogging(on); },
        [](const FileSavesControls& c) { return c.noLogging; });
    tick(
        "chkDFStopRec", tr("Activate Stop Recording when Disk Full Warning Displays"),
        [this](bool on) { form_.setStopRecordingWhenDiskFull(on); },
        [](const FileSavesControls& c) { return c.stopRecordingWhenDiskFull; });
    tick(
        "chkFileSave",
        tr("Check this box if you want enhanced crash protection for the last sentence "
           "spoken. "),
        [this](bool on) { form_.setSaveAtStop(on); },
        [](const FileSavesControls& c) { return c.saveAtStop; });
    tick(
        "chkRecover", tr("Check Mark To Activate Recovery Module"),
        [this](bool on) { form_.setRecovery(on); },
        [](const FileSavesControls& c) { return c.recovery; });
    tick(
        "chkAutoDelete", tr("Check Mark To Activate  Automatic  File Deletion"),
        [this](bool on) { form_.setAutoDelete(on); },
        [](const FileSavesControls& c) { return c.autoDelete; });
    tick(
        "Check3", tr("Check Mark To Activate Overwrite to End of Recording."),
        [this](bool on) { form_.setOverwriteToEnd(on); },
        [](const FileSavesControls& c) { return c.overwriteToEnd; });

    for (const bool playing : {false, true}) {
        auto* slider =
            named(new QSlider(Qt::Horizontal), playing ? "sldrVolumeOut" : "sldrVolumeInp");
        slider->setRange(0, 65535);
        grid->addWidget(
            new QLabel(playing ? tr("Playing Volume Default") : tr("Recording Volume Default")),
            row, 0);
        grid->addWidget(slider, row++, 1, 1, 2);
        connect(slider, &QSlider::valueChanged, this, [this, playing](int position) {
            if (playing) {
                form_.setPlayingVolume(position);
            } else {
                form_.setRecordingVolume(position);
            }
        });
        refreshers_.push_back([this, slider, playing] {
            const QSignalBlocker quiet(slider);
            slider->setValue(playing ? form_.controls().playingVolume
                                     : form_.controls().recordingVolume);
        });
    }
    return page;
}

QWidget* FileSavesWindow::peerGroup() {
    auto* box = named(new QGroupBox(tr("TCP Communications")), "FrameTCP");
    auto* grid = new QGridLayout(box);
    auto* tcp = named(new QCheckBox(tr("Activate")), "chkTCP");
    auto* ip = named(new QLineEdit, "txtIP");
    auto* port = named(new QLineEdit, "txtPort");
    auto* buttons = named(new QCheckBox(tr("Configure 8 buttons on QDU to send messages via TCP in "
                                           "place of the Standard 8 button configuration.")),
                          "chkButtonScreen");
    grid->addWidget(tcp, 0, 0);
    grid->addWidget(new QLabel(tr("Host IP")), 1, 0);
    grid->addWidget(ip, 1, 1);
    grid->addWidget(new QLabel(tr("Host Port")), 2, 0);
    grid->addWidget(port, 2, 1);
    grid->addWidget(buttons, 3, 0, 1, 2);
    auto* delays = new QHBoxLayout;
    const char* delayTexts[] = {"0 Sec Delay", "1 Secs Delay", "2 Secs Delay"};
    std::vector<QRadioButton*> delayButtons;
    for (int i = 0; i < 3; ++i) {
        auto* option = new QRadioButton(QString::fromLatin1(delayTexts[i]));
        option->setObjectName(QStringLiteral("opsecs%1").arg(i));
        delays->addWidget(option);
        delayButtons.push_back(option);
        connect(option, &QRadioButton::clicked, this, then([this, i] { form_.setTcpDelay(i); }));
    }
    grid->addLayout(delays, 4, 0, 1, 2);
    connect(tcp, &QCheckBox::clicked, this, then([this, tcp] { form_.setTcp(tcp->isChecked()); }));
    connect(ip, &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.setHostIp(text.toStdString()); });
    connect(port, &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.setHostPort(text.toStdString()); });
    connect(buttons, &QCheckBox::clicked, this,
            then([this, buttons] { form_.setButtonScreen(buttons->isChecked()); }));
    refreshers_.push_back([=, this] {
        const FileSavesControls& c = form_.controls();
        const QSignalBlocker q1(tcp), q2(buttons);
        tcp->setChecked(c.tcp);
        showText(ip, c.hostIp);
        showText(port, c.hostPort);
        ip->setEnabled(c.hostEnabled);
        port->setEnabled(c.hostEnabled);
        buttons->setChecked(c.buttonScreen);
        delayButtons[static_cast<std::size_t>(c.tcpDelay)]->setChecked(true);
    });
    return box;
}

QWidget* FileSavesWindow::buttonsRow() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    auto* save =
        named(new QPushButton(QString::fromLatin1(configuration::kSaveAndExitCaption)), "Command9");
    auto* cancel = named(new QPushButton(tr("Cancel")), "Command2");
    layout->addStretch();
    layout->addWidget(save);
    layout->addWidget(cancel);
    connect(save, &QPushButton::clicked, this, then([this] { form_.save(); }));
    connect(cancel, &QPushButton::clicked, this, [this] { form_.cancel(); });
    return row;
}

}  // namespace ovd::ui
