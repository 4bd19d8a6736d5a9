// Threads with a condition and a semaphore: a producer thread hands numbers to a
// consumer thread through a small bounded queue. The semaphore counts the free slots
// (the producer waits when the queue is full); the condition wakes the consumer when
// an item arrives. Only the consumer prints, so the output is the same on every run.
// ctest-labels: concurrency
#include <lumo/Lumo.h>

#include <cstdio>
#include <cstdlib>

using namespace lumo::base;

namespace {

// A queue of at most kSlots numbers, shared by the two threads.
class CBoundedQueue {
public:
    static constexpr unsigned long kSlots = 3;

    void Put(long item) {
        m_free.Acquire(); // wait for a free slot
        m_lock.Acquire();
        m_items[(m_first + m_count++) % kSlots] = item;
        m_arrived.Notify(); // wake the consumer if it waits
        m_lock.Release();
    }

    long Take() {
        m_lock.Acquire();
        while (m_count == 0)
            m_arrived.Wait(); // releases the lock while it sleeps
        long const item = m_items[m_first];
        m_first = (m_first + 1) % kSlots;
        --m_count;
        m_lock.Release();
        m_free.Release(); // one more free slot for the producer
        return item;
    }

private:
    CLock m_lock;
    CCondition m_arrived{m_lock};
    CSemaphore m_free{kSlots, kSlots}; // initial count, maximum count
    long m_items[kSlots] = {};
    unsigned long m_first = 0;
    unsigned long m_count = 0;
};

// Derive from CThread and put the thread's work in Run.
class CProducer : public CThread {
public:
    explicit CProducer(CBoundedQueue& queue) : m_queue(queue) {}
    void Run() override {
        for (long i = 1; i <= 10; ++i)
            m_queue.Put(i * i);
        m_queue.Put(-1); // tells the consumer that nothing more comes
    }
    CBoundedQueue& m_queue;
};

class CConsumer : public CThread {
public:
    explicit CConsumer(CBoundedQueue& queue) : m_queue(queue) {}
    void Run() override {
        for (long item; (item = m_queue.Take()) != -1; total += item)
            std::printf("consumed %ld\n", item);
    }
    CBoundedQueue& m_queue;
    long total = 0; // read by main after Join
};

} // namespace

int main() {
    lumo::Initialize();
    CBoundedQueue queue;
    CConsumer consumer(queue);
    CProducer producer(queue);
    consumer.Start();
    producer.Start();
    // Join with a time limit: a hang ends the program with an error, not a stuck run.
    if (!producer.Join(10000) || !consumer.Join(10000)) {
        std::printf("timed out\n");
        std::fflush(stdout);
        std::_Exit(1);
    }
    std::printf("both threads finished, total %ld\n", consumer.total);
    lumo::Terminate();
    return 0;
}
