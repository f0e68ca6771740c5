#include "ProcessStart.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// The streams of a process that has nothing to read, and whose output nobody reads.
class NoStreams
{
public:
    NoStreams()
    {
        m_isReady = posix_spawn_file_actions_init(&m_actions) == 0;
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            m_isReady = m_isReady && posix_spawn_file_actions_addopen(&m_actions, stream,
                                                                      "/dev/null", O_RDWR, 0) == 0;
        }
    }
    ~NoStreams() { posix_spawn_file_actions_destroy(&m_actions); }
    NoStreams(const NoStreams&) = delete;
    NoStreams& operator=(const NoStreams&) = delete;

    // Null without memory.
    const posix_spawn_file_actions_t* Get() const { return m_isReady ? &m_actions : nullptr; }

private:
    posix_spawn_file_actions_t m_actions;
    bool m_isReady;
};

void End(pid_t process)
{
    kill(process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

void StartAndEnd(const QString& program, const QStringList& arguments)
{
    std::vector<QByteArray> texts{QFile::encodeName(program)};
    for (const QString& argument : arguments) {
        texts.push_back(argument.toLocal8Bit());
    }
    std::vector<char*> pointers;
    for (QByteArray& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    const NoStreams streams;
    pid_t process = 0;
    if (streams.Get() != nullptr && posix_spawnp(&process, pointers[0], streams.Get(), nullptr,
                                                 pointers.data(), environ) == 0) {
        End(process);
    }
}
