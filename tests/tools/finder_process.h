#pragma once

#include "loam/preferences.h"
#include "loam/scratch_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

// What a run of the finder left: its exit status and what it wrote to standard output and error.
struct Outcome {
    int exitCode;
    std::string out, err;
};

inline std::string Said(const std::string& text) {
    return "sorvanta-find: " + text + "\n";
}

// Runs the built finder as a process, in a fresh folder of its own.
class FinderProcessTest : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        loam::SetPreferenceLocation("Wendlemark", "Sorvanta");
    }

    std::string Lines(const std::vector<std::string>& names, const std::string& end = "\n") const {
        std::string text;
        for (const std::string& name : names)
            text += Path(name) + end;
        return text;
    }

    // Runs the finder with standard output and error in files, or standard output a pipe that
    // nobody reads if asked.
    Outcome Run(std::vector<std::string> arguments, bool closedPipe = false) const {
        int pipeEnds[2] = {-1, -1};
        EXPECT_TRUE(!closedPipe || pipe(pipeEnds) == 0);
        const pid_t child = fork();
        if (child == 0) {
            close(pipeEnds[0]);
            const int flags = O_WRONLY | O_CREAT | O_TRUNC;
            dup2(closedPipe ? pipeEnds[1] : open(Path("stdout").c_str(), flags, 0600), 1);
            dup2(open(Path("stderr").c_str(), flags, 0600), 2);
            std::vector<char*> argv{const_cast<char*>(SORVANTA_FIND)};
            for (std::string& argument : arguments)
                argv.push_back(argument.data());
            argv.push_back(nullptr);
            execv(SORVANTA_FIND, argv.data());
            _exit(127);
        }
        for (const int end : pipeEnds)
            close(end);
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                closedPipe ? "" : ReadWhole("stdout"), ReadWhole("stderr")};
    }

    // Runs every row and compares all that the finder left.
    void ExpectRuns(const std::vector<std::pair<std::vector<std::string>, Outcome>>& table) const {
        for (const auto& [arguments, expected] : table) {
            SCOPED_TRACE(testing::PrintToString(arguments));
            const Outcome outcome = Run(arguments);
            EXPECT_EQ(outcome.exitCode, expected.exitCode);
            EXPECT_EQ(outcome.out, expected.out);
            EXPECT_EQ(outcome.err, expected.err);
        }
    }
};
