// What the scheduler costs while nothing is to be done: one poll over idle active objects. The
// peers look at the same number of flags, once side by side in a vector and once where the
// scheduler must look for them too, in objects of their own on the heap.

#include <CQActive.h>
#include <CQSchedulerInstance.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace
{

struct Idle : CQActive {
    Idle() : CQActive(0) {}
    void DoCancel() override {}
    void RunL(int) override {}
};

void PollIdleActiveObjects(benchmark::State& state)
{
    // As in a client, nothing of this is ever freed.
    auto& worker = *new CQSchedulerInstance(nullptr);
    auto& list = *new QList<CQActive*>;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        list.append(new Idle);
    }
    for (auto _ : state) {
        worker.RunActiveList(&list);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void PollVectorOfFlags(benchmark::State& state)
{
    std::vector<std::atomic<std::int32_t>> flags(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        int ready = 0;
        for (const auto& flag : flags) {
            ready += flag.load(std::memory_order_acquire) == 1 ? 1 : 0;
        }
        benchmark::DoNotOptimize(ready);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void PollFlagsOnTheHeap(benchmark::State& state)
{
    struct Object {
        virtual ~Object() = default;
        std::int32_t reserved[2]{};
        std::atomic<std::int32_t> ready{0};
        std::int32_t status = 0;
    };
    std::vector<std::unique_ptr<Object>> objects;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        objects.push_back(std::make_unique<Object>());
    }
    for (auto _ : state) {
        int ready = 0;
        for (const auto& object : objects) {
            ready += object->ready.load(std::memory_order_acquire) == 1 ? 1 : 0;
        }
        benchmark::DoNotOptimize(ready);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(PollIdleActiveObjects)->Arg(20000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PollVectorOfFlags)->Arg(20000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PollFlagsOnTheHeap)->Arg(20000)->Unit(benchmark::kMicrosecond);

} // namespace
