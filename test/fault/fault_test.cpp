#include "fault/fault_test.hpp"

#include <algorithm>
#include <csignal>
#include <ostream>

namespace {

/// How the program ends when nobody interferes.
constexpr const char* normalEnd = "Exitting program 'varnmenu' due to user normal exit";

struct fault_row_t {
    const char* name;
    const char* fault;   ///< see wanted_fault.hpp
    const char* text;    ///< what the user is told
    int exitStatus = 0;  ///< 128 and the signal's number for a death by a signal
    const char* arguments = "";
};

void PrintTo(const fault_row_t& row, std::ostream* out) { *out << row.fault; }

class fault_row_test : public fault_test, public testing::WithParamInterface<fault_row_t> {};

/// Which calls of a name fail, each in a separate run: the first of them, and every step-th after
/// it.
struct sweep_t {
    sweep_t(const char* name, int from = 1, int every = 1) : call(name), first(from), step(every) {}

    const char* call;
    int first;
    int step;
};

void PrintTo(const sweep_t& sweep, std::ostream* out) { *out << sweep.call; }

class fault_sweep_test : public fault_test, public testing::WithParamInterface<sweep_t> {};

}  // namespace

TEST_P(fault_row_test, IsToldAsItShould) {
    start(GetParam().fault, GetParam().arguments);
    EXPECT_EQ(GetParam().exitStatus, walk());
    EXPECT_TRUE(hasFailed());
    EXPECT_NE(std::string::npos, session->output().find(GetParam().text)) << session->output();
    expectNothingLeftBehind();
}

#define CRIT "[CRIT] Invalid argument error: "
constexpr const char* cannotRun = "Command cannot be executed properly";
constexpr const char* cannotPrint = "[WARN] Cannot print terminal line";
constexpr const char* noInput = "[WARN] Cannot extract user input";
constexpr const char* noEnvironment = CRIT "Environment variables cannot be initialized";
constexpr const char* noSequences = CRIT "Cannot initialize terminal sequences";
constexpr const char* notProper =
    CRIT "Info file has not all needed data or provided is not proper";

INSTANTIATE_TEST_SUITE_P(
    Calls, fault_row_test,
    testing::Values(
        fault_row_t{"InputDescriptor", "fileno:1:1:EBADF", CRIT "Cannot initialize terminal"},
        fault_row_t{"InputDescriptorAtTheEnd", "fileno:2:2:EBADF", "terminate called",
                    128 + SIGABRT},
        fault_row_t{"AttributesRead", "tcgetattr:2:2:EIO", CRIT "Cannot initialize terminal"},
        fault_row_t{"AttributesSet", "tcsetattr:1:1:EIO", CRIT "Cannot initialize terminal"},
        fault_row_t{"TerminfoOpened", "setupterm:1:1:EIO", CRIT "Cannot initialize terminal"},
        fault_row_t{"FirstSequence", "tigetstr:1:1:EIO", noSequences},
        fault_row_t{"FirstColour", "tparm:1:1:EIO",
                    CRIT "Cannot get parameter for terminal sequence"},
        fault_row_t{"FirstClear", "putp:1:1:EIO", "[CRIT] General exception: Cannot print"},
        fault_row_t{"FirstMenu", "putp:3:3:EIO", cannotPrint},
        fault_row_t{"WorkingDirectory", "getcwd:1:1:ENOENT", noEnvironment},
        fault_row_t{"WorkingDirectoryForGood", "getcwd:1:99:ENOENT", noEnvironment},
        fault_row_t{"ProgramWord", "main:1:1:EIO", "Exitting program '' due to user normal exit"},
        fault_row_t{"DescriptorLimit", "getrlimit:1:1:EPERM", normalEnd},
        fault_row_t{"TerminalTypeOfChildren", "getenv TERM:2:9:EIO", noEnvironment}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Files, fault_row_test,
    testing::Values(
        fault_row_t{"ReleaseFileTest", "access:1:1:ENOENT", CRIT "Info file is missing"},
        fault_row_t{"ImageTest", "access:2:2:EACCES", CRIT "Firmware file not found: fw.bin"},
        fault_row_t{"CoreProgramTest", "access:3:3:EACCES",
                    CRIT "Flashtools core program not available"},
        fault_row_t{"DocumentTest", "access:4:4:EACCES",
                    "[WARN] Text file is not present ../readme.txt"},
        fault_row_t{"ReleaseFileOpened", "fopen:1:1:EACCES", notProper},
        fault_row_t{"ReleaseFileRead", "read file:1:1:EIO", notProper},
        fault_row_t{"NoPlaceForTheLock", "open:1:1:ENOENT", normalEnd},
        fault_row_t{"NoLock", "flock:1:1:EIO", normalEnd}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Children, fault_row_test,
    testing::Values(
        fault_row_t{"QuestionNotFound", "posix_spawnp:1:1:ENOENT", cannotRun},
        fault_row_t{"ReaderSearch", "posix_spawnp:2:2:ENOENT", cannotRun},
        fault_row_t{"NoFileActions", "posix_spawn_file_actions_init:1:9:ENOMEM", normalEnd},
        fault_row_t{"QuestionNotAwaited", "waitpid:1:1:ECHILD", cannotRun},
        fault_row_t{"QuestionAwaitedAgain", "waitpid:1:9:EINTR", normalEnd},
        fault_row_t{"QuestionOnlyStopped", "waitpid:1:1:stopped", "Emergency Flash of both Images"},
        fault_row_t{"OutOfRange", "waitpid:1:1:out-of-range", "[CRIT] Out of range error: map::at"},
        fault_row_t{"OutOfRangeInTheMenu", "waitpid:2:2:out-of-range",
                    "[CRIT] Out of range error: map::at"},
        fault_row_t{"AnythingElse", "waitpid:1:1:integer", "[CRIT] Unknown exception"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Waits, fault_row_test,
    testing::Values(fault_row_t{"NoInstance", "epoll_create1:1:1:EMFILE", noInput},
                    fault_row_t{"NoRegistration", "epoll_ctl:1:1:EPERM", noInput},
                    fault_row_t{"NineInterruptions", "epoll_pwait:1:9:EINTR", normalEnd},
                    fault_row_t{"TenInterruptions", "epoll_pwait:1:10:EINTR", noInput},
                    fault_row_t{"BadInstance", "epoll_pwait:1:1:EBADF", noInput},
                    fault_row_t{"DrainInterrupted", "tcdrain:1:9:EINTR", normalEnd},
                    fault_row_t{"NoDrain", "tcdrain:1:99:EIO", normalEnd},
                    fault_row_t{"KeyNotRead", "read terminal:2:2:EIO", noInput},
                    fault_row_t{"KeyAtEndOfFile", "read terminal:2:2:eof", noInput},
                    fault_row_t{"TypeAheadNotRead", "read terminal:1:1:EIO", normalEnd},
                    fault_row_t{"PauseOfAFlash", "nanosleep:1:1:EINTR",
                                "[WARN] Cannot complete delay of seconds: 2", 0, "--eval"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Output, fault_row_test,
                         testing::Values(fault_row_t{"MenuNotWritten", "write:2:2:EIO", normalEnd},
                                         fault_row_t{"MenuInPieces", "write:1:500:short",
                                                     normalEnd}),
                         [](const auto& row) { return row.param.name; });

// What was read of that line is not to be taken for the whole value.
TEST_F(fault_test, RefusesAReleaseFileThatBreaksOffWithinALine) {
    constexpr std::size_t moreThanOneRead = 5000;
    package.write("releasefile-information.txt",
                  "IMAGE_NAME=fw.bin\nSYSTEM=SV\nSDR_RELEASE=3\n"
                  "VARN_RELEASE=" +
                      std::string(moreThanOneRead, '2') + "\n");
    start("read file:2:2:EIO");
    EXPECT_EQ(0, walk());
    EXPECT_TRUE(hasFailed());
    EXPECT_NE(std::string::npos, session->output().find(notProper)) << session->output();
}

// Every call fails at every point where it is made, one at a time. The program always ends in an
// orderly way and leaves nothing behind. Only a terminal that cannot be given back ends it by
// SIGABRT.
TEST_P(fault_sweep_test, EndsOrderlyWhereverItFails) {
    const std::set<int> orderly{0, 128 + SIGABRT};
    const sweep_t sweep = GetParam();
    for (int call = sweep.first;; call += sweep.step) {
        const std::string at = std::to_string(call);
        start(std::string(sweep.call) + ":" + at + ":" + at + ":EIO");
        const int status = walk();
        if (!hasFailed()) {
            EXPECT_GT(call, sweep.first) << "never called";
            break;
        }
        EXPECT_TRUE(orderly.contains(status)) << sweep.call << " " << call << ": " << status;
        EXPECT_TRUE(status == 0 || session->output().find("terminate") != std::string::npos);
        expectNothingLeftBehind();
    }
}

// A drawing consists of them: one sweep would take longer than all others together.
constexpr int putpSweeps = 4;
INSTANTIATE_TEST_SUITE_P(
    Putp, fault_sweep_test,
    testing::Values(sweep_t{"putp", 1, putpSweeps}, sweep_t{"putp", 2, putpSweeps},
                    sweep_t{"putp", 3, putpSweeps}, sweep_t{"putp", 4, putpSweeps}),
    [](const auto& sweep) { return "From" + std::to_string(sweep.param.first); });

INSTANTIATE_TEST_SUITE_P(Calls, fault_sweep_test,
                         testing::Values("fileno", "getrlimit", "tcgetattr", "tcsetattr",
                                         "setupterm", "tigetstr", "tparm", "getcwd", "getenv TERM",
                                         "access", "fopen", "read file",
                                         "posix_spawn_file_actions_init", "posix_spawnp", "waitpid",
                                         "open", "flock", "epoll_create1", "epoll_ctl",
                                         "epoll_pwait", "tcdrain", "write", "read terminal"),
                         [](const auto& sweep) {
                             std::string name = sweep.param.call;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });
