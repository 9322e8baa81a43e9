#pragma once

#include "system/files/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

// A program that is spoken to through pipes on its standard input, output and error.
class StandIn {
public:
    // `root` is what its JOYVANE_ROOT says; empty: it has none.
    StandIn(const std::string& program, const std::vector<std::string>& arguments, const std::string& root = "");
    ~StandIn(); // kills it if it still runs
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    ::pid_t identifier() const { return m_process; }
    void say(const std::string& line) const;
    void closeInput() { m_input.reset(); }
    void signal(int number) const;

    // Everything that it has said so far, until so many lines have the text or it ends; false then.
    bool hears(const std::string& text, std::size_t times = 1);
    // The same without waiting.
    bool hasSaid(const std::string& text);
    const std::vector<std::string>& lines() const { return m_lines; }

    // Waits for its end: the exit code, or the signal's number below zero; nullopt when it does not end in ten seconds.
    std::optional<int> end();

private:
    bool readSome(int milliseconds);

    ::pid_t m_process = 0;
    seat::Descriptor m_input;
    seat::Descriptor m_output;
    std::string m_partial;
    std::vector<std::string> m_lines;
};
