// What the scheduler costs while nothing is to be done: one poll over idle active objects. The
// peers look at the same number of flags, once side by side in a vector and once where the
// scheduler must look for them too, in objects of their own on the heap.

#include "Row.h"

#include <CQActive.h>
#include <CQSchedulerInstance.h>

#include <atomic>
#include <cstdint>
#include <ctime>
#include <vector>

namespace
{

struct Idle : CQActive {
    Idle() : CQActive(0) {}
    void DoCancel() override {}
    void RunL(int) override {}
};

constexpr int enObjects = 20000;

// As in a client, nothing of this is ever freed.
QList<CQActive*>* MakeIdleObjects(int count)
{
    auto* const list = new QList<CQActive*>;
    for (int i = 0; i < count; ++i) {
        list->append(new Idle);
    }
    return list;
}

int CountReady(const std::vector<std::atomic<std::int32_t>>& flags)
{
    int ready = 0;
    for (const auto& flag : flags) {
        ready += flag.load(std::memory_order_acquire) == 1 ? 1 : 0;
    }
    return ready;
}

struct HeapObject {
    virtual ~HeapObject() = default;
    std::int32_t reserved[2]{};
    std::atomic<std::int32_t> ready{0};
    std::int32_t status = 0;
};

int CountReady(const std::vector<HeapObject*>& objects)
{
    int ready = 0;
    for (const HeapObject* object : objects) {
        ready += object->ready.load(std::memory_order_acquire) == 1 ? 1 : 0;
    }
    return ready;
}

std::vector<HeapObject*> MakeHeapObjects()
{
    std::vector<HeapObject*> objects;
    for (int i = 0; i < enObjects; ++i) {
        objects.push_back(new HeapObject);
    }
    return objects;
}

// What each of the ten polls a second may take for 0.1% of a core: 100 microseconds.
int SpendShareOfPoll()
{
    const auto read = [] {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
    };
    const std::int64_t end = read() + 100000;
    int looks = 0;
    while (read() < end) {
        ++looks;
    }
    return looks;
}

// 1.15 times the time of a vector of flags is 0.87 of its throughput.
const bool rows =
    (Row("poll over 1,000 idle objects")
         .Library([worker = new CQSchedulerInstance(nullptr), list = MakeIdleObjects(1000)] {
             worker->RunActiveList(list);
             return list;
         })
         .Peer("0.1% of a core", 1, SpendShareOfPoll),
     Row("poll over 20,000 idle objects")
         .Library([worker = new CQSchedulerInstance(nullptr), list = MakeIdleObjects(enObjects)] {
             worker->RunActiveList(list);
             return list;
         })
         .Peer("vector of flags", 0.87,
               [flags = new std::vector<std::atomic<std::int32_t>>(enObjects)] {
                   return CountReady(*flags);
               })
         .Peer("flags on the heap", 0.87,
               [objects = MakeHeapObjects()] { return CountReady(objects); }),
     true);

} // namespace
