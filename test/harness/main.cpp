#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

namespace {

/// The lock of a flash lies in /run, and tests run side by side: each process sees a /run of its
/// own, see mount_namespaces(7), and so does all that it starts.
class own_run_folder : public testing::Environment {
public:
    void SetUp() override {
        ASSERT_TRUE(unshare(CLONE_NEWNS) == 0 &&
                    mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    mount("tmpfs", "/run", "tmpfs", 0, "mode=755") == 0)
            << "cannot mount a folder over /run, as root usually can";
    }
};

}  // namespace

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    testing::AddGlobalTestEnvironment(new own_run_folder);  // owned by GoogleTest from now on
    return RUN_ALL_TESTS();
}
