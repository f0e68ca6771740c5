#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// One row of the table: the same work by the library and by its peers, measured in one process
/// in random turns. Rows register themselves, at namespace scope or from a function called by
/// one:
///
///     const bool rows = (Row("MD5, 64 KiB")
///         .Library([=] { return Md5(text); })
///         .Peer("OpenSSL", 0.98, [=] { return OpenSslMd5(text); }), true);
///
/// Work is a callable that is run over and over and returns what must not be optimised away.
/// State that one call changes is rebuilt by the work itself, alike on both sides, or by a
/// `prepare` before each call, which is not measured: that costs some hundred nanoseconds itself,
/// so the work has to be longer by far.
class Row
{
public:
    explicit Row(std::string work) : m_work(std::move(work)) { Order().push_back(m_work); }

    /// The rows as the sources list them; they are measured in random turns.
    static std::vector<std::string>& Order()
    {
        static std::vector<std::string> order;
        return order;
    }

    template <class Work>
    Row& Library(Work work)
    {
        return Register("orvobase", 0, Nothing(), std::move(work));
    }

    template <class Prepare, class Work>
    Row& Library(Prepare prepare, Work work)
    {
        return Register("orvobase", 0, std::move(prepare), std::move(work));
    }

    /// `target` is what the library's throughput is to be, as a multiple of this peer's.
    template <class Work>
    Row& Peer(const std::string& name, double target, Work work)
    {
        return Register(name, target, Nothing(), std::move(work));
    }

    template <class Prepare, class Work>
    Row& Peer(const std::string& name, double target, Prepare prepare, Work work)
    {
        return Register(name, target, std::move(prepare), std::move(work));
    }

private:
    struct Nothing {
    };

    /// The name carries the row and the target to the table: "work|who|target".
    template <class Prepare, class Work>
    Row& Register(const std::string& who, double target, Prepare prepare, Work work)
    {
        const std::string name = m_work + "|" + who + "|" + std::to_string(target);
        benchmark::RegisterBenchmark(name.c_str(),
                                     [prepare = std::move(prepare),
                                      work = std::move(work)](benchmark::State& state) mutable {
                                         for (auto _ : state) {
                                             if constexpr (!std::is_same_v<Prepare, Nothing>) {
                                                 state.PauseTiming();
                                                 prepare();
                                                 state.ResumeTiming();
                                             }
                                             benchmark::DoNotOptimize(work());
                                         }
                                     });
        return *this;
    }

    std::string m_work;
};
