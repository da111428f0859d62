#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <new>
#include <optional>

#include "tests/support/Child.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TempDir.h"
#include "tests/support/Transcript.h"
#include "zarnsys/util/FileIO.h"
#include "zarnsys/util/ZarnSysEx.h"

namespace {

using Lines = std::vector<std::string>;

Lines calls;                // of the system that the stand-ins below saw
bool bitsAreFixed = false;  // nobody can set permission bits

}  // namespace

// These take the system's place for the library, too.
extern "C" int open(const char* name, int flags, ...) {
    mode_t mode = 0;
    va_list arguments;
    va_start(arguments, flags);
    if ((flags & O_CREAT) != 0) mode = va_arg(arguments, mode_t);
    va_end(arguments);
    calls.push_back(name + (" " + std::to_string(flags)) + " " + std::to_string(mode));
    return ::openat(AT_FDCWD, name, flags, mode);
}
extern "C" int fchmod(int fd, mode_t mode) noexcept {
    calls.push_back("fchmod " + std::to_string(mode));
    return bitsAreFixed ? -1 : static_cast<int>(::syscall(SYS_fchmod, fd, mode));
}
extern "C" int system(const char* command) {
    calls.emplace_back(command);
    if (bitsAreFixed) return -1;
    return reinterpret_cast<int (*)(const char*)>(::dlsym(RTLD_NEXT, "system"))(command);
}

namespace {

class FileIOTest : public ::testing::Test {
protected:
    TempDir dir_;
    LogCapture log_;
    std::optional<FileIO> file_;

    /// Does what a line says, to the file or by the shell, and tells the log and what came of it.
    /// Marks stand for the characters that no line has: ^ for NUL, ~ for the end of a line.
    std::string answer(std::string line) {
        std::replace(line.begin(), line.end(), '^', '\0');
        std::replace(line.begin(), line.end(), '~', '\n');
        std::istringstream words(line);
        std::string action;
        Lines in;
        words >> action;
        for (std::string word; words >> std::quoted(word);) in.push_back(word);
        std::stringstream text;
        try {
            act(action, in);
            ask(action, text);
            if (action == "sh") text << shellSays(line.substr(2));
        } catch (ZarnSysEx& exception) {
            text << "thrown with " << log_.error() << ": "
                 << (ZarnSysEx("") = ZarnSysEx(exception)).what();
            EXPECT_NE(static_cast<std::exception&>(exception).what(), exception.what());
            EXPECT_NE(log_.file().find("FileIO.cpp"), std::string::npos);
        }
        const std::string said = text.str();
        return log_.take() + said + (said.empty() || said.back() == '\n' ? "" : "\n");
    }
    void act(const std::string& action, const Lines& in) {
        const bool reads = in.size() > 1 && in[1].find('r') != std::string::npos;
        const bool writes = in.size() > 1 && in[1].find('w') != std::string::npos;
        if (action == "file") file_.emplace(in.at(0), reads, writes);
        if (action == "join") file_.emplace(in, true, false);
        if (action == "open") file_->open(in.at(0), reads, writes);
        if (action == "close") file_->close();
        if (action == "name") file_->setFileName(in.at(0));
        if (action == "extension") file_->setExtension(in.at(0));
        if (action == "directory") file_->checkCreateDir(in.at(0));
        if (action == "write") file_->write(in.at(0));
        if (action == "rename") file_->rename(in.at(0));
        if (action == "remove") file_->remove(in.at(0) == "force");
    }
    void ask(const std::string& action, std::stringstream& text) {
        if (action == "load") {
            text << "kept|";
            file_->load(text);
        }
        if (action == "exists") text << file_->exists();
        if (action == "path-exists") text << file_->pathExists();
        if (action == "is-file") text << file_->isFile();
        if (action == "names")
            text << file_->getCompleteName() << " | " << file_->getPath() << " | "
                 << file_->getBaseName() << " | " << file_->getExtension() << " |";
    }
    std::string shellSays(const std::string& command) const {
        // NOLINTNEXTLINE(cert-env33-c): the transcript's commands are this test's own
        EXPECT_EQ(std::system(("exec > .said;" + command).c_str()), 0) << command;
        return dir_.get(".said");
    }
    /// The same for a failure: the line logged and what was thrown.
    static std::string failure(const std::string& message, int error) {
        const std::string text = message + ". Error: " + std::strerror(error) + "\n";
        return "128 ERROR [ ] " + text + "thrown with " + std::to_string(error) + ": " + text;
    }

    void SetUp() override { ASSERT_EQ(::chdir((dir_ / "").c_str()), 0); }
};

TEST_F(FileIOTest, NamesAndFilesAnswerAsTheTranscriptHasIt) {
    ASSERT_EQ(::mknod("socket", S_IFSOCK | 0600, 0), 0);
    const mode_t mask = ::umask(077);
    expectTranscript(TEST_DATA "/files.txt",
                     [this](const std::string& line) { return answer(line); });
    ::umask(mask);
}

TEST_F(FileIOTest, ItsOwnNameIsAnArgumentLikeAnyOther) {
    FileIO file(std::string("a"), true, true);
    EXPECT_EQ(file.addPath(file.getCompleteName()).getCompleteName(), "a/a");
    EXPECT_EQ(file.setFileName(file.getBaseName()).getCompleteName(), "a");
    EXPECT_EQ(file.setExtension(file.getCompleteName()).getCompleteName(), "a.a");
    EXPECT_EQ(file.setFileName(file.getCompleteName()).getCompleteName(), "a.a");
    std::string& extension = file.getExtension();
    file.getCompleteName() = "b";
    EXPECT_EQ(file.setExtension(extension).getCompleteName(), "b.a") << "a cache grown stale";
    const std::string* const caches[] = {&file.getPath(), &file.getBaseName(), &extension};
    file.clear();
    for (const std::string* cache : caches) EXPECT_EQ(*cache, "");
    file.setFileName(dir_ / "f").write("text");
    std::stringstream text;
    file.rename(file.getCompleteName()).open(file.getCompleteName(), true, false).load(text);
    EXPECT_EQ(text.str(), "text");
}

TEST_F(FileIOTest, APartialWriteIsAFailure) {
    EXPECT_EQ(inChild([&] {
                  ::signal(SIGXFSZ, SIG_IGN);
                  answer("file f rw");
                  errno = EDOM;  // earlier, and not the reason
                  const rlimit limit = {3, 3};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  EXPECT_EQ(answer("write abcdef"),
                            "4 DEBUG [ ] Writing into file: f. Buffer length: 6\n" +
                                failure("Error writing to file: f", 0));
                  return HasFailure() ? 1 : 0;
              }),
              0);
    EXPECT_EQ(dir_.get("f"), "abc");
}

TEST_F(FileIOTest, AsksTheSystemForNoMoreThanItNeeds) {
    bitsAreFixed = true;
    const mode_t mask = ::umask(0);
    const std::string name = dir_ / "sub/f";
    FileIO file(name, true, true);
    calls.clear();
    file.write("x").close().write("y").open(name, true, false).open(name, false, false);
    const std::string bits = "fchmod 436";  // 0664
    EXPECT_EQ(calls, (Lines{"/bin/chmod 755 " + (dir_ / "sub"), name + " 66 436", bits,
                            name + " 2 0", bits, name + " 0 0", bits, name + " 1 0", bits}))
        << "flags: O_CREAT is 64, O_RDWR 2, O_WRONLY 1";
    EXPECT_EQ(dir_.mode("sub"), 01755) << "until the command sets its bits";
    EXPECT_EQ(dir_.mode("sub/f"), 0664);
    ::umask(mask);
    bitsAreFixed = false;
}

TEST_F(FileIOTest, AFileNeverTakesAStandardStreamsDescriptorForZero) {
    EXPECT_EQ(inChild([&] {
                  for (const int stream : {0, 1, 2}) ::close(stream);
                  FileIO file(dir_ / "f", true, true);
                  file.write("one").write("two");
                  int taken = 0;
                  for (const int stream : {0, 1, 2}) taken += ::fcntl(stream, F_GETFD) != -1;
                  return dir_.get("f") == "onetwo" ? taken : 9;
              }),
              0);
}

TEST_F(FileIOTest, AnotherUsersFileOpensWithItsOwnBits) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to make another user's file";
    dir_.put("f", "text");
    ::chmod((dir_ / "f").c_str(), 0604);
    ::chmod((dir_ / "").c_str(), 0755);
    EXPECT_EQ(inChild([&] {
                  if (::mkdirat(AT_FDCWD, (dir_ / "closed").c_str(), 0) != 0) return 2;
                  if (::chdir((dir_ / "closed").c_str()) != 0) return 2;
                  becomeOrdinaryUser();
                  file_.emplace(dir_ / "f", true, false);
                  log_.take();
                  EXPECT_EQ(answer("load"),
                            "4 DEBUG [ ] Loading file: " + (dir_ / "f") + "\nkept|text\n");
                  EXPECT_EQ(dir_.mode("f"), 0604);
                  EXPECT_EQ(answer("directory " + (dir_ / "d")),
                            failure("Error creating path: " + (dir_ / "d"), EACCES));
                  answer("name plain");
                  EXPECT_EQ(answer("directory \"\""), "") << "in a place he cannot search";
                  return HasFailure() ? 1 : 0;
              }),
              0);
}

TEST_F(FileIOTest, MatchReplacesTheListByWhatItFinds) {
    for (const char* name : {"b.fits", "a.fits", ".c.fits", "d.txt", "e.fits"}) dir_.put(name, "");
    std::filesystem::create_directory(dir_ / "z.fits");
    Lines names;
    std::string lines = "4 DEBUG [ ] Executing match on path: " + (dir_ / "*.fits") + "\n";
    for (const auto& entry : std::filesystem::directory_iterator(dir_ / "")) {
        const std::string name = entry.path().filename();
        if (name == ".c.fits" || name == "d.txt") continue;
        names.push_back(dir_ / name);
        lines += "4 DEBUG [ ] Found matching file: |" + names.back() + "|\n";
    }
    Lines found = {"earlier"};
    FileIO file(dir_ / "*.fits", true, false);
    log_.take();
    file.match(found, 1);
    EXPECT_EQ(log_.take(), lines);
    EXPECT_EQ(found, names) << "in the directory's order";
    for (const char* none : {"none*", "{a,b}.fits", "d.txt/*"}) {
        found = {"earlier"};
        file.setFileName(dir_ / none).match(found, 0);
        EXPECT_EQ(found, Lines{}) << none;
    }
    file.setFileName(dir_ / "\\a.fit[s]").match(found, 0);
    EXPECT_EQ(found, Lines{dir_ / "a.fits"});
}

}  // namespace
