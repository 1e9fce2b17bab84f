// The queue: order, timeouts, closing, wake-ups, and many writers with many readers
// (which the thread sanitizer watches).
#include "queue.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "test_support.h"

namespace {

struct Message {
    B_QUEMSG_S link{};
    uint32_t writer = 0;
    uint32_t number = 0;
};

Message *message_of(B_QUEMSG link) {
    return reinterpret_cast<Message *>(link);
}

/// An open queue for the length of a test.
class Queue : public B_QUEUE {
  public:
    Queue() { EXPECT_EQ(b_queueInit(this), sOKAY); }
    ~Queue() { b_queueTerm(this); }
    Queue(const Queue &) = delete;
    Queue &operator=(const Queue &) = delete;
};

uint64_t millis_since(std::chrono::steady_clock::time_point start) {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                     std::chrono::steady_clock::now() - start)
                                     .count());
}

TEST(Queue, BeginsOpenAndEmpty) {
    B_QUEUE queue;
    EXPECT_EQ(b_queueInit(&queue), sOKAY);
    EXPECT_EQ(queue.status, B_QUEUE_OPEN);
    EXPECT_EQ(queue.head, nullptr);
    EXPECT_EQ(queue.tail, nullptr);
    EXPECT_EQ(b_queueCount(&queue), 0);
    b_queueTerm(&queue);
}

TEST(Queue, DeliversInTheOrderOfTheWrites) {
    Queue queue;
    Message messages[3];
    for (int32_t i = 0; i < 3; ++i) {
        messages[i].link.next = &messages[0].link; // cleared by the write
        EXPECT_EQ(b_queueWrite(&queue, &messages[i].link), sOKAY);
        EXPECT_EQ(b_queueCount(&queue), i + 1);
    }
    B_QUEMSG message = nullptr;
    for (int32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(b_queueRead(&queue, &message, OSL_WAIT_FOREVER), sOKAY);
        EXPECT_EQ(message, &messages[i].link);
        EXPECT_EQ(b_queueCount(&queue), 2 - i);
    }
    EXPECT_EQ(b_queueRead(&queue, &message, 0), sBASE_QUEUE_EMPTY);
    EXPECT_EQ(b_queueWrite(&queue, &messages[0].link), sOKAY) << "and again";
    EXPECT_EQ(b_queueRead(&queue, &message, 0), sOKAY);
    EXPECT_EQ(message, &messages[0].link);
}

TEST(Queue, AnswersEmptyAtOnceWithATimeoutOfZero) {
    Queue queue;
    Message other;
    B_QUEMSG message = &other.link;
    EXPECT_EQ(b_queueRead(&queue, &message, 0), sBASE_QUEUE_EMPTY);
    EXPECT_EQ(message, &other.link) << "the output is untouched";
}

TEST(Queue, AnswersTimeoutAfterIt) {
    Queue queue;
    B_QUEMSG message = nullptr;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(b_queueRead(&queue, &message, 30), sTIMEOUT);
    EXPECT_GE(millis_since(start), 30u);
    EXPECT_EQ(b_queueRead(&queue, &message, 0), sBASE_QUEUE_EMPTY) << "the locks are free";
}

TEST(Queue, DeliversWhatItHoldsBeforeItAnswersClosed) {
    Queue queue;
    Message messages[2];
    B_QUEMSG message = nullptr;
    ASSERT_EQ(b_queueWrite(&queue, &messages[0].link), sOKAY);
    b_queueClose(&queue);
    EXPECT_EQ(queue.status, B_QUEUE_CLOSED);
    EXPECT_EQ(b_queueWrite(&queue, &messages[1].link), sOKAY) << "also on a closed queue";
    for (Message &expected : messages) {
        EXPECT_EQ(b_queueRead(&queue, &message, OSL_WAIT_FOREVER), sOKAY);
        EXPECT_EQ(message, &expected.link);
    }
    for (const uint64_t timeout : {uint64_t{0}, uint64_t{1000000}, OSL_WAIT_FOREVER}) {
        EXPECT_EQ(b_queueRead(&queue, &message, timeout), sBASE_QUEUE_CLOSED);
    }
    EXPECT_EQ(message, &messages[1].link);
}

TEST(Queue, WakesAWaitingReaderWithAWrite) {
    Queue queue;
    Message written;
    B_QUEMSG message = nullptr;
    std::thread reader([&] { EXPECT_EQ(b_queueRead(&queue, &message, OSL_WAIT_FOREVER), sOKAY); });
    osl_sleep(10);
    EXPECT_EQ(b_queueWrite(&queue, &written.link), sOKAY);
    reader.join();
    EXPECT_EQ(message, &written.link);
}

TEST(Queue, WakesEveryWaitingReaderWhenItIsClosed) {
    Queue queue;
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([&] {
            B_QUEMSG message = nullptr;
            EXPECT_EQ(b_queueRead(&queue, &message, OSL_WAIT_FOREVER), sBASE_QUEUE_CLOSED);
        });
    }
    osl_sleep(10);
    b_queueClose(&queue);
    for (std::thread &reader : readers) {
        reader.join();
    }
}

// The close takes no lock, so it may come between a reader's looks: none is missed.
TEST(Queue, NeverMissesAClose) {
    for (int round = 0; round < 300; ++round) {
        Queue queue;
        std::atomic<bool> ready = false;
        std::thread reader([&] {
            B_QUEMSG message = nullptr;
            ready = true;
            EXPECT_EQ(b_queueRead(&queue, &message, OSL_WAIT_FOREVER), sBASE_QUEUE_CLOSED);
        });
        while (!ready) {
            std::this_thread::yield();
        }
        for (int spin = 0; spin < round; ++spin) {
            std::atomic_signal_fence(std::memory_order_seq_cst);
        }
        b_queueClose(&queue);
        reader.join();
    }
}

// A signal without a message: the reader looks, finds nothing and waits again, but
// not beyond its timeout.
TEST(Queue, WaitsAgainAfterAWakeUpWithoutAMessage) {
    Queue queue;
    Message written;
    std::atomic<bool> done = false;
    std::thread noise([&] {
        while (!done) {
            osl_syncResume(queue.entrySem);
            osl_sleep(1);
        }
    });
    B_QUEMSG message = nullptr;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(b_queueRead(&queue, &message, 40), sTIMEOUT);
    EXPECT_GE(millis_since(start), 30u) << "whole milliseconds are counted off";
    std::thread writer([&] {
        osl_sleep(10);
        EXPECT_EQ(b_queueWrite(&queue, &written.link), sOKAY);
    });
    EXPECT_EQ(b_queueRead(&queue, &message, OSL_WAIT_FOREVER), sOKAY);
    EXPECT_EQ(message, &written.link);
    done = true;
    noise.join();
    writer.join();
}

TEST(Queue, DeliversEachMessageOfManyWritersToOneOfManyReaders) {
    constexpr uint32_t kWriters = 4;
    constexpr uint32_t kReaders = 4;
    constexpr uint32_t kEach = 2000;
    Queue queue;
    std::vector<Message> messages(kWriters * kEach);
    std::vector<std::atomic<uint32_t>> read(messages.size());
    std::vector<std::thread> threads;
    for (uint32_t reader = 0; reader < kReaders; ++reader) {
        threads.emplace_back([&] {
            std::vector<int64_t> last(kWriters, -1);
            B_QUEMSG link = nullptr;
            OAK_RETCODE rc = sOKAY;
            for (;;) {
                rc = b_queueRead(&queue, &link, 5);
                if (rc == sTIMEOUT) {
                    continue;
                }
                if (rc != sOKAY) {
                    break;
                }
                const Message *message = message_of(link);
                ++read[message->writer * kEach + message->number];
                EXPECT_GT(int64_t{message->number}, last[message->writer]) << "in order";
                last[message->writer] = message->number;
            }
            EXPECT_EQ(rc, sBASE_QUEUE_CLOSED);
        });
    }
    std::vector<std::thread> writers;
    for (uint32_t writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([&, writer] {
            for (uint32_t number = 0; number < kEach; ++number) {
                Message &message = messages[writer * kEach + number];
                message.writer = writer;
                message.number = number;
                EXPECT_EQ(b_queueWrite(&queue, &message.link), sOKAY);
                EXPECT_GE(b_queueCount(&queue), 0);
            }
        });
    }
    for (std::thread &writer : writers) {
        writer.join();
    }
    b_queueClose(&queue);
    for (std::thread &reader : threads) {
        reader.join();
    }
    for (const auto &count : read) {
        ASSERT_EQ(count, 1u);
    }
    EXPECT_EQ(b_queueCount(&queue), 0);
}

TEST(Queue, RefusesNullArguments) {
    Queue queue;
    Message message;
    B_QUEMSG link = nullptr;
    EXPECT_EQ(b_queueInit(nullptr), eINVNULLARG);
    EXPECT_EQ(b_queueWrite(nullptr, &message.link), eINVNULLARG);
    EXPECT_EQ(b_queueWrite(&queue, nullptr), eINVNULLARG);
    EXPECT_EQ(b_queueRead(nullptr, &link, 0), eINVNULLARG);
    EXPECT_EQ(b_queueRead(&queue, nullptr, 0), eINVNULLARG);
    EXPECT_EQ(b_queueCount(nullptr), 0);
    b_queueClose(nullptr);
    b_queueTerm(nullptr);
}

TEST(Queue, DeletesTheLocksAlreadyMadeWhenOneCannotBe) {
    const uint64_t runs = oaktest::sweep_faults(oaktest::Resource::sync, {eOSL_FAILURE}, [] {
        B_QUEUE queue;
        const OAK_RETCODE rc = b_queueInit(&queue);
        if (rc == sOKAY) {
            b_queueTerm(&queue);
        }
        return rc;
    });
    EXPECT_EQ(runs, oaktest::faults_are_injected() ? 6u : 0u) << "three locks, two ways";
}

} // namespace
