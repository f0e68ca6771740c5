// An account that saves itself: edits come at random, a time-out timer gathers them, and two
// active objects of different priority journal and save them on the scheduler's worker thread.
//
//     autosave [--root DIR] [--seconds N]
//
// Exit codes: 0 the file on disk holds every edit; 1 it does not; 2 the arguments are wrong.

#include <BaseUtil.h>
#include <CQActive.h>
#include <CQActiveScheduler.h>
#include <CQFile.h>
#include <CQSString.h>
#include <CQWString.h>
#include <CTimeOutTimer.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <MTimeOutNotifier.h>
#include <Orvo/CQPath.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QEvent>
#include <QRandomGenerator>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr unsigned int accountNumber = 10002;
constexpr int saveDelayInMicroseconds = 800'000;

struct Options {
    CQSString root;
    int seconds;
};

// One line a moment, from either thread.
class TimeLine
{
public:
    void Print(const char* thread, const std::string& text)
    {
        const std::chrono::duration<double> since = std::chrono::steady_clock::now() - m_start;
        const std::lock_guard lock(m_mutex);
        std::printf("%6.2f s  %-6s  %s\n", since.count(), thread, text.c_str());
    }

private:
    std::mutex m_mutex;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

struct Contact {
    int number;
    int edits;
};

// The contacts and what is not yet journalled or saved; shared by both threads.
class Account
{
public:
    Account()
    {
        for (int number = 20001; number <= 20008; ++number) {
            m_contacts.push_back({number, 0});
        }
    }

    Contact EditOne()
    {
        const std::lock_guard lock(m_mutex);
        const int choice = QRandomGenerator::global()->bounded(int(m_contacts.size()));
        Contact& contact = m_contacts[size_t(choice)];
        ++contact.edits;
        ++m_notJournalled;
        m_dirty = true;
        return contact;
    }

    std::vector<Contact> TakeForSaving()
    {
        const std::lock_guard lock(m_mutex);
        m_dirty = false;
        return m_contacts;
    }

    int TakeForJournal()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_notJournalled, 0);
    }

    bool IsDirty() const
    {
        const std::lock_guard lock(m_mutex);
        return m_dirty;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Contact> m_contacts;
    int m_notJournalled = 0;
    bool m_dirty = false;
};

// Work for the scheduler's worker thread.
class Work : public CQActive
{
public:
    Work(int nPriority, std::function<void()> run) : CQActive(nPriority), m_run(std::move(run)) {}

    void DoCancel() override {}
    void RunL(int) override { m_run(); }

private:
    std::function<void()> m_run;
};

// Edits, waits, saves; ends the event loop when time is up and all is saved.
class AutoSaver : public QObject, public MTimeOutNotifier
{
public:
    explicit AutoSaver(const CQSString& path)
        : m_path(path), m_timer(CTimeOutTimer::NewL(*this)),
          // Active objects stay with the scheduler for the life of the process.
          m_journal(new Work(4, [this] { Journal(); })), m_save(new Work(1, [this] { Save(); }))
    {
        CQActiveScheduler* const scheduler = CQActiveScheduler::instance();
        scheduler->installEventFilter(this);
        scheduler->Add(m_save);
        scheduler->Add(m_journal);
    }

    // The scheduler's own notice that an object has run: on the main thread, and when the ready
    // flag is down, so that the next raise is not lost.
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::User) {
            OnWorkDone();
        }
        return false;
    }

    void Start(int seconds)
    {
        m_line.Print("main", "editing begins; a save follows 0.8 s after the first unsaved edit");
        QTimer::singleShot(seconds * 1000, QCoreApplication::instance(), [this] { Stop(); });
        PlanEdit();
    }

    int Edits() const { return m_edits; }
    int Saves() const { return m_saves; }
    const CQSString& Path() const { return m_path; }
    std::vector<Contact> Contacts() { return m_account.TakeForSaving(); }

    void OnTimeOut() override
    {
        m_line.Print("main", "time-out: the save is raised, then the journal");
        RaiseSave();
    }

private:
    void PlanEdit()
    {
        const int pause = QRandomGenerator::global()->bounded(100, 450);
        QTimer::singleShot(pause, QCoreApplication::instance(), [this] {
            if (!m_stopping) {
                Edit();
                PlanEdit();
            }
        });
    }

    void Edit()
    {
        const Contact contact = m_account.EditOne();
        ++m_edits;
        m_line.Print("main", "edit " + std::to_string(m_edits) + ": contact " +
                                 std::to_string(contact.number) + " now at revision " +
                                 std::to_string(contact.edits));
        ArmTimer();
    }

    // A flag raised while its object runs would be lost, so while a save runs the timer stays
    // off; OnWorkDone() looks for edits made meanwhile.
    void ArmTimer()
    {
        if (m_worksRunning == 0 && !m_timer->IsActive()) {
            m_timer->After(saveDelayInMicroseconds);
        }
    }

    void RaiseSave()
    {
        m_worksRunning = 2;
        m_save->Complete(0);
        m_journal->Complete(0);
    }

    void Journal()
    {
        m_line.Print("worker", "  journal (priority 4): " +
                                   std::to_string(m_account.TakeForJournal()) + " edits noted");
    }

    // Beside the old file, which stays as it is until the new one is whole and on the disk.
    void Save()
    {
        const std::vector<Contact> contacts = m_account.TakeForSaving();
        CQSString newPath(m_path);
        newPath.AppendData(".new");
        OrvoStream::FileOutputStream file{CQWString(newPath)};
        DataOutputStream out(file);
        out << int(contacts.size());
        for (const Contact& contact : contacts) {
            out << contact.number << contact.edits;
        }
        out.Flush();
        out.Close();
        CQFile written;
        const bool isSaved = !out.HasFailed() && written.Open(newPath, 3) && written.Sync() &&
                             std::rename(newPath.GetDataPtr(), m_path.GetDataPtr()) == 0;
        m_line.Print("worker", "  save (priority 1): " +
                                   (isSaved ? std::to_string(written.GetLength()) + " bytes"
                                            : std::string("failed; the old file stays")));
    }

    void OnWorkDone()
    {
        if (--m_worksRunning > 0) {
            return;
        }
        ++m_saves;
        m_line.Print("main", "saved");
        if (m_stopping) {
            Finish();
        } else if (m_account.IsDirty()) {
            ArmTimer();
        }
    }

    void Stop()
    {
        m_stopping = true;
        m_timer->Cancel();
        m_line.Print("main", "time is up");
        if (m_worksRunning == 0) {
            Finish();
        }
    }

    void Finish()
    {
        if (m_account.IsDirty()) {
            RaiseSave();
        } else {
            QCoreApplication::quit();
        }
    }

    TimeLine m_line;
    Account m_account;
    CQSString m_path;
    std::unique_ptr<CTimeOutTimer> m_timer;
    Work* m_journal;
    Work* m_save;
    int m_edits = 0;
    int m_saves = 0;
    int m_worksRunning = 0;
    bool m_stopping = false;
};

bool FileHolds(const CQSString& path, const std::vector<Contact>& contacts)
{
    OrvoStream::FileInputStream file{CQWString(path)};
    OrvoStream::DataInputStream in(file);
    try {
        bool equal = in.ReadInt() == int(contacts.size());
        for (const Contact& contact : contacts) {
            equal = equal && in.ReadInt() == contact.number && in.ReadInt() == contact.edits;
        }
        return equal;
    } catch (int) {
        return false; // the file ends too early
    }
}

CQSString AccountFile(const Options& options)
{
    CQSString directory;
    CBaseUtil::FormatString(directory, "%s\\%u", options.root.GetDataPtr(), accountNumber);
    if (!CQFile::CreateDirectory(CQWString(directory))) {
        return {};
    }
    CQSString path;
    CQPath::GetBuddylistFilePath(path, directory.GetDataPtr());
    return path;
}

// Nothing when the arguments are wrong; the reason then stands on stderr.
std::unique_ptr<Options> ParseArguments()
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Shows an account that saves itself.");
    const QCommandLineOption root("root", "Directory for the account's file.", "DIR",
                                  "account-data");
    const QCommandLineOption seconds("seconds", "How long edits come, 1 to 600.", "N", "5");
    parser.addOptions({root, seconds});
    parser.addHelpOption();
    parser.process(*QCoreApplication::instance());

    bool isNumber = false;
    const int count = parser.value(seconds).toInt(&isNumber);
    if (!isNumber || count < 1 || count > 600) {
        std::fprintf(stderr, "autosave: --seconds takes 1 to 600, got '%s'\n",
                     qUtf8Printable(parser.value(seconds)));
        return nullptr;
    }
    if (parser.value(root).isEmpty() || !parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "autosave: wants --root DIR and nothing behind; see --help\n");
        return nullptr;
    }
    auto options = std::make_unique<Options>();
    options->root.SetData(parser.value(root).toUtf8().constData());
    options->seconds = count;
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const std::unique_ptr<Options> options = ParseArguments();
    if (!options) {
        return 2;
    }
    const CQSString path = AccountFile(*options);
    if (path.IsEmpty()) {
        std::fprintf(stderr, "autosave: %s: cannot make the account's directory there\n",
                     options->root.GetDataPtr());
        return 1;
    }

    AutoSaver saver(path);
    saver.Start(options->seconds);
    QCoreApplication::exec();

    if (!FileHolds(path, saver.Contacts())) {
        std::fprintf(stderr,
                     "autosave: %s: does not hold the edits (disk full, or no permission?)\n",
                     path.GetDataPtr());
        return 1;
    }
    std::printf("%d edits, %d saves; %s holds every edit.\n", saver.Edits(), saver.Saves(),
                path.GetDataPtr());
    return 0;
}
