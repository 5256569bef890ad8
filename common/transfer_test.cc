#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <functional>
#include <thread>

#include "tests/support/child.hh"
#include "tests/support/device_test.hh"

namespace {

const std::string quit = "recv data maybe error, no continue read, quit\n";
const std::string null_input = "input param is null.\n";

std::string written_nothing(int error) {
    return "write_ret is 0, errno(" + std::to_string(error) + ").\n";
}

std::string write_passing(int error, int fd) {
    return "write errno is EINTR or EAGAIN, error(" + std::string(strerror(error)) + "), sock_fd(" +
           std::to_string(fd) + ").\n";
}

std::string write_fail(int error) {
    return "write fail, errno(" + std::to_string(error) + "), error(" + strerror(error) + ").\n";
}

std::string read_passing(int error, int fd) {
    return "read fail, error(" + std::string(strerror(error)) + "), errno(" +
           std::to_string(error) + "), sock_fd(" + std::to_string(fd) + ").\n";
}

std::string recv_fail(int error, int fd) {
    return "recv fail, error(" + std::string(strerror(error)) + "), errno(" +
           std::to_string(error) + "), fd(" + std::to_string(fd) + ")\n";
}

std::string closed(int error, int fd) {
    return "client connect maybe closed, errno(" + std::to_string(error) + "), fd(" +
           std::to_string(fd) + ")\n";
}

// Bytes that differ from their neighbours, and none of them zero.
std::string bytes(size_t size) {
    std::string text(size, '\0');
    for (size_t i = 0; i < size; i++) {
        text[i] = static_cast<char>(1 + i % 251);
    }
    return text;
}

std::string zeros(size_t size) { return std::string(size, '\0'); }

// Two ends of a connection. The library works on the near one.
struct Ends {
    explicit Ends(int type = SOCK_STREAM) { socketpair(AF_UNIX, type, 0, fds); }
    ~Ends() {
        close_near();
        close_far();
    }
    Ends(const Ends &) = delete;
    Ends &operator=(const Ends &) = delete;

    int near() const { return fds[0]; }
    int far() const { return fds[1]; }
    void close_near() { close_end(fds[0]); }
    void close_far() { close_end(fds[1]); }

    void put(const std::string &text) const {
        EXPECT_EQ(::send(far(), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    }
    // This much, or all that is there with 0.
    std::string take(size_t size = 0) const {
        std::string text;
        char piece[65536];
        while (size == 0 || text.size() < size) {
            const size_t wanted = size == 0 ? sizeof(piece) : size - text.size();
            const ssize_t got =
                ::recv(far(), piece, std::min(wanted, sizeof(piece)), size == 0 ? MSG_DONTWAIT : 0);
            if (got <= 0) {
                break;
            }
            text.append(piece, static_cast<size_t>(got));
        }
        return text;
    }
    void never_block() const { fcntl(near(), F_SETFL, O_NONBLOCK); }
    // The near end takes no further byte.
    size_t fill() const {
        size_t filled = 0;
        ssize_t sent;
        while ((sent = ::send(near(), bytes(4096).data(), 4096, MSG_DONTWAIT)) > 0) {
            filled += static_cast<size_t>(sent);
        }
        return filled;
    }

    int fds[2] = {-1, -1};

private:
    static void close_end(int &fd) {
        if (fd >= 0) {
            close(fd);
        }
        fd = -1;
    }
};

// The same over TCP on this machine; false where there is no such network.
bool connect_by_tcp(Ends &ends) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto *place = reinterpret_cast<sockaddr *>(&address);
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    ends.close_near();
    ends.close_far();
    if (bind(listener, place, size) == 0 && listen(listener, 1) == 0 &&
        getsockname(listener, place, &size) == 0) {
        ends.fds[1] = socket(AF_INET, SOCK_STREAM, 0);
        if (connect(ends.far(), place, size) == 0) {
            ends.fds[0] = accept(listener, nullptr, nullptr);
        }
    }
    close(listener);
    return ends.near() >= 0;
}

// Until the reader has taken all that was sent to it.
void wait_until_read(int reader) {
    int waiting = 1;
    while (ioctl(reader, FIONREAD, &waiting) == 0 && waiting > 0) {
        std::this_thread::yield();
    }
}

// Until something has come.
void wait_until_sent(int receiver) {
    pollfd reader = {receiver, POLLIN, 0};
    poll(&reader, 1, -1);
}

// Until this much has come, in however many pieces.
void wait_until_sent(int receiver, int size) {
    int waiting = 0;
    while (ioctl(receiver, FIONREAD, &waiting) == 0 && waiting < size) {
        std::this_thread::yield();
    }
}

// What the platform's log printer does at its calls: the very moment of a retry.
std::function<void(int)> at_message;
int messages;

void count_message() {
    if (at_message) {
        at_message(++messages);
    }
}

// Signals that restart no call, from now on.
void raise_every(int milliseconds) {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const itimerval timer = {{0, milliseconds * 1000}, {0, milliseconds * 1000}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

class Transfer : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        signal(SIGPIPE, SIG_IGN);
        fault::skip_sleeps();
        messages = 0;
        at_message = nullptr;
        platform.on_syslog = count_message;
    }

    // Receives into a buffer that was full before, and keeps it.
    int32_t receive(int fd, int32_t length) {
        std::string room(static_cast<size_t>(length) + 1, '\xff');
        const int32_t result = recv_data(fd, &room[0], length);
        EXPECT_EQ(room.back(), '\xff') << "behind the buffer";
        room.pop_back();
        buffer = room;
        return result;
    }

    std::string buffer;
};

class Send : public Transfer {};
class Receive : public Transfer {};

// --- sending ------------------------------------------------------------------

TEST_F(Send, WritesTheWholeRecord) {
    Ends ends;
    EXPECT_EQ(send_data(ends.near(), bytes(300).data(), 300), 0);
    EXPECT_EQ(ends.take(), bytes(300));
    EXPECT_EQ(fault::calls("write"), 1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Send, RefusesNull) {
    Ends ends;
    for (uint32_t length : {0u, 1u}) {
        forget_log();
        EXPECT_EQ(send_data(ends.near(), nullptr, length), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", null_input));
        EXPECT_EQ(trace_messages().size(), 1u);
    }
    EXPECT_EQ(ends.take(), "");
}

TEST_F(Send, WritesNothingOfAnEmptyRecord) {
    EXPECT_EQ(send_data(-1, "", 0), 0);
    EXPECT_EQ(fault::calls("write"), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Send, GoesOnWhereAShortWriteEnded) {
    Ends ends;
    fault::limit("write", 1, 7);
    EXPECT_EQ(send_data(ends.near(), bytes(300).data(), 300), 0);
    EXPECT_EQ(ends.take(), bytes(300));
    EXPECT_EQ(fault::calls("write"), 2);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Send, WaitsForASlowPeer) {
    Ends ends;
    const std::string record = bytes(1000000);
    std::string got;
    std::thread peer([&] { got = ends.take(record.size()); });
    EXPECT_EQ(send_data(ends.near(), record.data(), 1000000), 0);
    peer.join();
    EXPECT_TRUE(got == record);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Send, TakesAWriteOfNothingForTheEnd) {
    Ends ends;
    fault::limit("write", 1, 0);
    errno = EXDEV;
    EXPECT_EQ(send_data(ends.near(), "record", 6), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", written_nothing(EXDEV)));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(ends.take(), "");
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Send, TakesAWriteOfNothingForTheEndInTheMiddleToo) {
    Ends ends;
    ends.never_block();
    const size_t filled = ends.fill();
    at_message = [&](int) {
        // The log's own write comes first.
        fault::limit("write", 2, 0);
        EXPECT_EQ(ends.take().size(), filled);
        at_message = nullptr;
    };
    EXPECT_EQ(send_data(ends.near(), "record", 6), 0);
    EXPECT_EQ(ends.take(), "");
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_passing(EAGAIN, ends.near())));
    EXPECT_EQ(trace_messages().size(), 2u);
    EXPECT_EQ(trace_lines().back().message.rfind("write_ret is 0, errno(", 0), 0u);
}

TEST_F(Send, CountsItsLengthWithoutASign) {
    Ends ends;
    fault::limit("write", 1, 5);
    fault::fail("write", 2, EIO);
    EXPECT_EQ(send_data(ends.near(), "12345", 0xfffffff0u), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_fail(EIO)));
    EXPECT_EQ(ends.take(), "12345");
}

TEST_F(Send, FailsAtAPeerThatIsGone) {
    Ends ends;
    ends.close_far();
    EXPECT_EQ(send_data(ends.near(), "record", 6), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_fail(EPIPE)));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Send, FailsAtAPeerThatGoesInTheMiddle) {
    Ends ends;
    std::thread peer([&] {
        ends.take(1000);
        ends.close_far();
    });
    const std::string record = bytes(4000000);
    EXPECT_EQ(send_data(ends.near(), record.data(), 4000000), -1);
    peer.join();
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_TRUE(traced("error", "send_data", write_fail(EPIPE)) == 1 ||
                traced("error", "send_data", write_fail(ECONNRESET)) == 1);
}

TEST_F(Send, FailsAtABadDescriptor) {
    EXPECT_EQ(send_data(-1, "record", 6), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_fail(EBADF)));
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(Send, GivesUpAtTheSeventhWriteThatWouldBlock) {
    Ends ends;
    ends.never_block();
    const size_t filled = ends.fill();
    for (int call = 0; call < 2; call++) {
        forget_log();
        fault::reset();
        fault::skip_sleeps();
        EXPECT_EQ(send_data(ends.near(), "record", 6), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_passing(EAGAIN, ends.near())));
        EXPECT_EQ(traced("error", "send_data", write_passing(EAGAIN, ends.near())), 7);
        EXPECT_EQ(trace_messages().size(), 7u);
        EXPECT_EQ(fault::calls("nanosleep"), 6);
        EXPECT_EQ(fault::slept(), 6);
    }
    EXPECT_EQ(ends.take().size(), filled);
}

TEST_F(Send, GoesOnAfterTheSixthWriteThatWouldBlock) {
    Ends ends;
    ends.never_block();
    ends.fill();
    at_message = [&](int message) {
        if (message == 6) {
            ends.take();
        }
    };
    EXPECT_EQ(send_data(ends.near(), "record", 6), 0);
    EXPECT_EQ(ends.take(), "record");
    EXPECT_EQ(trace_messages().size(), 6u);
    EXPECT_EQ(fault::slept(), 6);
}

TEST_F(Send, CountsTheRetriesOfTheWholeCallWhateverGoesOut) {
    Ends ends;
    ends.never_block();
    const std::string record = bytes(4000000);
    std::string got;
    at_message = [&](int message) {
        if (message % 2 == 0) {
            got += ends.take();
        }
    };
    EXPECT_EQ(send_data(ends.near(), record.data(), 4000000), -1);
    got += ends.take();
    EXPECT_EQ(traced("error", "send_data", write_passing(EAGAIN, ends.near())), 7);
    EXPECT_EQ(fault::slept(), 6);
    ASSERT_LT(got.size(), record.size());
    EXPECT_TRUE(got == record.substr(0, got.size()));
}

TEST_F(Send, TriesAgainWhenASignalInterruptsIt) {
    Ends ends;
    const size_t filled = ends.fill();
    at_message = [&](int) {
        raise_every(0);
        EXPECT_EQ(ends.take().size(), filled);
    };
    raise_every(20);
    EXPECT_EQ(send_data(ends.near(), "record", 6), 0);
    EXPECT_EQ(ends.take(), "record");
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_passing(EINTR, ends.near())));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(fault::slept(), 1);
}

// --- receiving ----------------------------------------------------------------

TEST_F(Receive, ReadsTheWholeRecord) {
    Ends ends;
    ends.put(bytes(300) + "the next one");
    EXPECT_EQ(receive(ends.near(), 300), 0);
    EXPECT_EQ(buffer, bytes(300));
    EXPECT_EQ(fault::calls("read"), 1);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(receive(ends.near(), 12), 0);
    EXPECT_EQ(buffer, "the next one");
}

TEST_F(Receive, RefusesNull) {
    Ends ends;
    ends.put("record");
    for (int32_t length : {6, 0, -1}) {
        forget_log();
        EXPECT_EQ(recv_data(ends.near(), nullptr, length), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", null_input));
        EXPECT_EQ(trace_messages().size(), 1u);
    }
    EXPECT_EQ(fault::calls("read"), 0);
}

TEST_F(Receive, ReadsNothingIntoNoRoom) {
    for (int32_t length : {0, -1, INT32_MIN}) {
        char byte = 'x';
        EXPECT_EQ(recv_data(-1, &byte, length), 0);
        EXPECT_EQ(byte, 'x');
    }
    EXPECT_EQ(fault::calls("read"), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Receive, EndsWithAShortRecord) {
    Ends ends;
    ends.put(bytes(60));
    EXPECT_EQ(receive(ends.near(), 100), 0);
    EXPECT_EQ(buffer, bytes(60) + zeros(40));
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", quit));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(fault::calls("read"), 1);
}

// Packets, so that each read brings what one write sent.
TEST_F(Receive, GoesOnAfterReadsOfMoreThan8192Bytes) {
    const struct {
        std::vector<size_t> packets;
        size_t wanted, got;
        int reads;
    } cases[] = {
        {{10000, 10000}, 20000, 20000, 2},
        {{8193, 8193, 3614}, 20000, 20000, 3},
        {{8193, 1}, 8194, 8194, 2},
        {{8192, 11808}, 20000, 8192, 1},
        {{8192, 1}, 8193, 8192, 1},
        {{10000, 8192, 1808}, 20000, 18192, 2},
        {{10000, 1, 9999}, 20000, 10001, 2},
        {{8192}, 8192, 8192, 1},
        {{1, 8191}, 8192, 1, 1},
        {{8193}, 8193, 8193, 1},
    };
    for (const auto &each : cases) {
        Ends ends(SOCK_SEQPACKET);
        forget_log();
        fault::reset();
        const std::string record = bytes(each.wanted);
        size_t sent = 0;
        for (size_t packet : each.packets) {
            ends.put(record.substr(sent, packet));
            sent += packet;
        }
        EXPECT_EQ(receive(ends.near(), static_cast<int32_t>(each.wanted)), 0);
        EXPECT_TRUE(buffer == record.substr(0, each.got) + zeros(each.wanted - each.got));
        EXPECT_EQ(fault::calls("read"), each.reads) << each.wanted;
        EXPECT_EQ(traced("error", "recv_data", quit), each.got < each.wanted ? 1 : 0);
        EXPECT_EQ(trace_messages().size(), each.got < each.wanted ? 1u : 0u);
    }
}

TEST_F(Receive, WaitsForASlowPeer) {
    Ends ends;
    const std::string record = bytes(29000);
    std::thread peer([&] {
        for (size_t sent : {0, 10000, 20000}) {
            wait_until_read(ends.near());
            ends.put(record.substr(sent, 10000));
        }
    });
    EXPECT_EQ(receive(ends.near(), 29000), 0);
    peer.join();
    EXPECT_TRUE(buffer == record);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Receive, FailsWhenThePeerHasClosed) {
    Ends ends;
    ends.close_far();
    errno = EXDEV;
    EXPECT_EQ(receive(ends.near(), 100), -1);
    EXPECT_EQ(buffer, zeros(100));
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", closed(EXDEV, ends.near())));
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(Receive, KeepsWhatHadComeWhenThePeerCloses) {
    Ends ends;
    ends.put(bytes(10000));
    ends.close_far();
    EXPECT_EQ(receive(ends.near(), 20000), -1);
    EXPECT_TRUE(buffer == bytes(10000) + zeros(10000));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(trace_lines()[0].message.rfind("client connect maybe closed, errno(", 0), 0u);
}

TEST_F(Receive, FailsWhenThePeerBreaksOff) {
    Ends ends;
    ASSERT_EQ(::send(ends.near(), "unread", 6, 0), 6);
    ends.close_far();
    EXPECT_EQ(receive(ends.near(), 100), -1);
    EXPECT_EQ(buffer, zeros(100));
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", recv_fail(ECONNRESET, ends.near())));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Receive, FailsAtABadDescriptor) {
    EXPECT_EQ(receive(-1, 100), -1);
    EXPECT_EQ(buffer, zeros(100));
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", recv_fail(EBADF, -1)));
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(Receive, GivesUpAtTheThirdReadThatWouldBlock) {
    Ends ends;
    ends.never_block();
    for (int call = 0; call < 2; call++) {
        forget_log();
        fault::reset();
        fault::skip_sleeps();
        EXPECT_EQ(receive(ends.near(), 100), -3);
        EXPECT_EQ(buffer, zeros(100));
        EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", read_passing(EAGAIN, ends.near())));
        EXPECT_EQ(traced("error", "recv_data", read_passing(EAGAIN, ends.near())), 3);
        EXPECT_EQ(trace_messages().size(), 3u);
        EXPECT_EQ(fault::calls("nanosleep"), 2);
        EXPECT_EQ(fault::slept(), 2);
    }
}

TEST_F(Receive, GoesOnAfterTheSecondReadThatWouldBlock) {
    Ends ends;
    ends.never_block();
    at_message = [&](int message) {
        if (message == 2) {
            ends.put("record");
        }
    };
    EXPECT_EQ(receive(ends.near(), 6), 0);
    EXPECT_EQ(buffer, "record");
    EXPECT_EQ(trace_messages().size(), 2u);
    EXPECT_EQ(fault::slept(), 2);
}

TEST_F(Receive, CountsTheRetriesOfTheWholeCallWhateverComesIn) {
    Ends ends;
    ends.never_block();
    at_message = [&](int message) {
        if (message < 3) {
            ends.put(bytes(10000));
        }
    };
    EXPECT_EQ(receive(ends.near(), 30000), -3);
    EXPECT_TRUE(buffer == bytes(10000) + bytes(10000) + zeros(10000));
    EXPECT_EQ(traced("error", "recv_data", read_passing(EAGAIN, ends.near())), 3);
    EXPECT_EQ(fault::slept(), 2);
}

TEST_F(Receive, TriesAgainWhenASignalInterruptsIt) {
    Ends ends;
    at_message = [&](int) {
        raise_every(0);
        ends.put("record");
    };
    raise_every(20);
    EXPECT_EQ(receive(ends.near(), 6), 0);
    EXPECT_EQ(buffer, "record");
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", read_passing(EINTR, ends.near())));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(fault::slept(), 1);
}

TEST_F(Receive, GivesUpAtTheThirdInterruption) {
    Ends ends;
    ends.put("record");
    fault::fail("read", 1, EINTR, 3);
    EXPECT_EQ(receive(ends.near(), 6), -3);
    EXPECT_EQ(buffer, zeros(6));
    EXPECT_EQ(traced("error", "recv_data", read_passing(EINTR, ends.near())), 3);
    EXPECT_EQ(fault::slept(), 2);
}

// --- over TCP, between processes and between threads ----------------------------

class TransferByTcp : public Transfer {
protected:
    void SetUp() override {
        Transfer::SetUp();
        if (!connect_by_tcp(ends)) {
            GTEST_SKIP() << "no network of the machine with itself";
        }
    }
    Ends ends;
};

TEST_F(TransferByTcp, MovesARecordBothWays) {
    EXPECT_EQ(send_data(ends.near(), bytes(600).data(), 600), 0);
    EXPECT_EQ(ends.take(600), bytes(600));
    EXPECT_EQ(send_data(ends.far(), bytes(700).data(), 700), 0);
    EXPECT_EQ(receive(ends.near(), 700), 0);
    EXPECT_EQ(buffer, bytes(700));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TransferByTcp, GathersARecordOfSeveralReads) {
    ends.put(bytes(20000));
    wait_until_sent(ends.near(), 20000);
    fault::limit("read", 1, 10000);
    EXPECT_EQ(receive(ends.near(), 20000), 0);
    EXPECT_TRUE(buffer == bytes(20000));
    EXPECT_EQ(fault::calls("read"), 2);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TransferByTcp, EndsWithAShortRecord) {
    ends.put(bytes(60));
    EXPECT_EQ(receive(ends.near(), 100), 0);
    EXPECT_EQ(buffer, bytes(60) + zeros(40));
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", quit));
}

TEST_F(TransferByTcp, SendsToASlowPeer) {
    const std::string record = bytes(8000000);
    std::string got;
    std::thread peer([&] { got = ends.take(record.size()); });
    EXPECT_EQ(send_data(ends.near(), record.data(), 8000000), 0);
    peer.join();
    EXPECT_TRUE(got == record);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(TransferByTcp, FailsWhenThePeerHasClosed) {
    ends.close_far();
    EXPECT_EQ(receive(ends.near(), 100), -1);
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(trace_lines()[0].message.rfind("client connect maybe closed, errno(", 0), 0u);
}

TEST_F(TransferByTcp, FailsWhenThePeerBreaksOff) {
    ASSERT_EQ(::send(ends.near(), "unread", 6, 0), 6);
    wait_until_sent(ends.far());
    ends.close_far();
    EXPECT_EQ(receive(ends.near(), 100), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "recv_data", recv_fail(ECONNRESET, ends.near())));
    EXPECT_EQ(send_data(ends.near(), "record", 6), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "send_data", write_fail(EPIPE)));
}

TEST_F(TransferByTcp, GivesUpOnAPeerThatSendsAndTakesNothing) {
    const int room = 65536;
    setsockopt(ends.near(), SOL_SOCKET, SO_SNDBUF, &room, sizeof(room));
    setsockopt(ends.far(), SOL_SOCKET, SO_RCVBUF, &room, sizeof(room));
    ends.never_block();
    EXPECT_EQ(receive(ends.near(), 100), -3);
    EXPECT_EQ(fault::slept(), 2);
    ends.fill();
    EXPECT_EQ(send_data(ends.near(), bytes(8000000).data(), 8000000), -1);
    EXPECT_EQ(traced("error", "send_data", write_passing(EAGAIN, ends.near())), 7);
    EXPECT_EQ(fault::slept(), 8);
}

TEST_F(Transfer, CarriesQuestionAndAnswerBetweenProcesses) {
    Ends ends;
    struct Record {
        uint32_t number;
        char text[9000];
    };
    Child server([&ends](Child &) {
        Record record;
        if (recv_data(ends.far(), &record, sizeof(record)) != 0) {
            return 1;
        }
        record.number++;
        return send_data(ends.far(), &record, sizeof(record)) == 0 ? 0 : 2;
    });
    Record question = {41, "text"}, answer;
    EXPECT_EQ(send_data(ends.near(), &question, sizeof(question)), 0);
    EXPECT_EQ(recv_data(ends.near(), &answer, sizeof(answer)), 0);
    EXPECT_EQ(server.wait(), 0);
    EXPECT_EQ(answer.number, 42u);
    EXPECT_STREQ(answer.text, "text");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Transfer, IsNotDisturbedByAReceiptOfAnotherThread) {
    Ends slow, quick;
    const std::string record = bytes(20000);
    std::string got(record.size(), '\xff');
    int32_t result = -9;
    slow.put(record.substr(0, 10000));
    std::thread receiver([&] { result = recv_data(slow.near(), &got[0], 20000); });
    wait_until_read(slow.near());

    quick.put("short");
    EXPECT_EQ(receive(quick.near(), 100), 0);
    EXPECT_EQ(buffer, "short" + zeros(95));
    quick.never_block();
    EXPECT_EQ(receive(quick.near(), 100), -3);

    slow.put(record.substr(10000));
    receiver.join();
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(got == record);
}

TEST_F(Transfer, IsNotDisturbedByASendingOfAnotherThread) {
    Ends slow, quick;
    const std::string record = bytes(4000000);
    int32_t result = -9;
    std::thread sender([&] { result = send_data(slow.near(), record.data(), 4000000); });
    wait_until_sent(slow.far());

    EXPECT_EQ(send_data(quick.near(), "record", 6), 0);
    EXPECT_EQ(quick.take(), "record");
    quick.never_block();
    quick.fill();
    EXPECT_EQ(send_data(quick.near(), "record", 6), -1);
    EXPECT_EQ(traced("error", "send_data", write_passing(EAGAIN, quick.near())), 7);

    EXPECT_TRUE(slow.take(record.size()) == record);
    sender.join();
    EXPECT_EQ(result, 0);
}
