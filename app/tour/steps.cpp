#include "app/tour/steps.h"

#include "app/Options.h"
#include "app/Simulation.h"
#include "app/tour/Recorder.h"
#include "app/tour/Stage.h"
#include "app/tour/StandInDesktop.h"
#include "app/tour/TourFolder.h"
#include "app/tour/key_names.h"
#include "kit/uikit/application.h"
#include "platform/foundation/NSString.h"
#include "system/files/root.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>

namespace {

using namespace app;
using Words = std::span<const std::string>; // what follows the verb

constexpr double timeout = 10; // seconds
constexpr double dragSeconds = 0.5;

std::string quoted(const NodeQuery& query) { return query.role + " \"" + query.name + '"'; }

std::optional<double> number(const std::string& word) {
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size()) return {};
    return value;
}

// All of the words as numbers, or none of them.
std::vector<double> numbers(Words words) {
    std::vector<double> values;
    for (const auto& word : words)
        if (const auto value = number(word))
            values.push_back(*value);
        else
            return {};
    return values;
}

std::string wait(Tour& tour, const std::string& what, const std::function<bool()>& done) {
    if (tour.stage.waitUntil(done, timeout)) return {};
    return "timed out after " + NSStringWithFormat("%g", timeout) + " s waiting for " + what;
}

// The node, where it can be touched; `problem` when it cannot be had.
std::optional<CGRect> extentOf(const NodeQuery& query, Tour& tour, std::string& problem) {
    if (!roleNamed(query.role)) {
        problem = "there is no role " + query.role;
        return {};
    }
    problem = wait(tour, quoted(query), [&] { return tour.stage.find(query) != nullptr; });
    if (!problem.empty()) return {};
    tour.stage.settle();
    if (!tour.stage.reveal(query)) {
        problem = quoted(query) + " cannot be scrolled into view";
        return {};
    }
    tour.stage.settle();
    const auto* const node = tour.stage.find(query);
    if (!node) {
        problem = quoted(query) + " has gone";
        return {};
    }
    return node->extent;
}

CGPoint placeIn(CGRect rect, double fx, double fy) {
    return {rect.origin.x + rect.size.width * fx, rect.origin.y + rect.size.height * fy};
}

std::string tap(Words words, Tour& tour) {
    CGPoint place{0.5, 0.5};
    if (words.size() == 5 && words[2] == "at") {
        const auto fractions = numbers(words.subspan(3));
        if (fractions.empty()) return "takes fractions after \"at\"";
        place = {fractions[0], fractions[1]};
    } else if (words.size() != 2) {
        return "takes a role and a name, and maybe a place";
    }
    std::string problem;
    const auto extent = extentOf({words[0], words[1]}, tour, problem);
    if (!extent) return problem;
    tour.stage.tap(placeIn(*extent, place.x, place.y));
    tour.stage.settle();
    return {};
}

std::string drag(Words words, Tour& tour) {
    if (words.size() != 7 || words[4] != "to") return "takes a role, a name and two places";
    const auto from = numbers(words.subspan(2, 2));
    const auto to = numbers(words.subspan(5, 2));
    if (from.empty() || to.empty()) return "takes places as fractions";
    std::string problem;
    const auto extent = extentOf({words[0], words[1]}, tour, problem);
    if (!extent) return problem;
    tour.stage.drag(placeIn(*extent, from[0], from[1]), placeIn(*extent, to[0], to[1]), dragSeconds);
    tour.stage.settle();
    return {};
}

std::string scroll(Words words, Tour& tour) {
    const auto points = numbers(words);
    if (points.size() != 1) return "takes a number of points";
    const CGSize window = tour.stage.size();
    tour.stage.scroll({window.width / 2, window.height / 2}, points[0]);
    tour.stage.settle();
    return {};
}

std::string key(Words words, Tour& tour) {
    const long usage = words.size() == 1 ? keyNamed(words[0]) : 0;
    if (usage == 0) return "takes the name of a key";
    tour.stage.key(usage, 0);
    tour.stage.settle();
    return {};
}

std::string step(Words words, Tour& tour) {
    using Direction = UIAccessibilityDirection;
    static constexpr std::pair<const char*, Direction> directions[] = {
        {"left", Direction::Left}, {"right", Direction::Right}, {"up", Direction::Up}, {"down", Direction::Down}};
    const bool isLarge = words.size() == 4 && words[3] == "large";
    const auto* const direction =
        words.size() == 3 || isLarge
            ? std::find_if(std::begin(directions), std::end(directions), [&](auto& d) { return words[2] == d.first; })
            : std::end(directions);
    if (direction == std::end(directions)) return "takes a role, a name and a direction";
    const auto size = isLarge ? UIAccessibilityStep::Large : UIAccessibilityStep::Small;
    if (!tour.stage.step({words[0], words[1]}, direction->second, size))
        return quoted({words[0], words[1]}) + " does not move";
    tour.stage.settle();
    return {};
}

std::string waitForSomething(Words words, Tour& tour) {
    auto& stage = tour.stage;
    if (words.size() == 2 && words[0] != "noted") {
        const NodeQuery query{words[0], words[1]};
        return wait(tour, quoted(query), [&] { return stage.find(query) != nullptr; });
    }
    if (words.size() == 3 && words[0] == "gone") {
        const NodeQuery query{words[1], words[2]};
        return wait(tour, quoted(query) + " to go", [&] { return stage.find(query) == nullptr; });
    }
    if (words.size() == 4 && words[0] == "value") {
        const NodeQuery query{words[1], words[2]};
        return wait(tour, quoted(query) + " to have the value \"" + words[3] + '"', [&] {
            const auto* const node = stage.find(query);
            return node && node->value.starts_with(words[3]);
        });
    }
    if ((words.size() == 2 || words.size() == 3) && words[0] == "noted") {
        const double times = words.size() == 3 ? number(words[2]).value_or(0) : 1;
        if (times < 1) return "takes a number of times";
        return wait(tour, "\"" + words[1] + "\" in the log", [&] { return tour.recorder.count(words[1]) >= times; });
    }
    return "takes a role and a name, or \"gone\", \"value\" or \"noted\"";
}

std::string picture(Words words, Tour& tour) {
    if (words.size() != 1) return "takes a name";
    tour.stage.settle();
    return takePicture(words[0], tour);
}

std::string say(Words words, Tour& tour) {
    if (words.size() != 1) return "takes a text";
    tour.recorder.note("== " + words[0]);
    return {};
}

std::string watch(Words words, Tour& tour) {
    if (words.size() == 2 && words[0] == "notification")
        tour.recorder.watchNotification(words[1]);
    else if (words.size() == 2 && words[0] == "file")
        tour.recorder.watchPropertyList(words[1]);
    else
        return "takes \"notification\" or \"file\", and its name";
    return {};
}

// A file is replaced, so that whoever watches it never sees a half.
std::string write(Words words, Tour&) {
    if (words.size() < 2 || !words[0].starts_with('/')) return "takes a file and its lines";
    const std::filesystem::path path(seat::hostPath(words[0]));
    const std::filesystem::path beside(path.string() + ".new");
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    std::ofstream file(beside);
    for (const auto& line : words.subspan(1)) file << line << '\n';
    file.close();
    if (!file.fail()) std::filesystem::rename(beside, path, error);
    return file.fail() || error ? words[0] + " cannot be written" : "";
}

std::string simulation(Words words, Tour& tour) {
    std::string problem;
    if (words.size() == 1 && words[0] == "stop") {
        tour.simulation.stopDaemon();
    } else if (words.size() == 1 && words[0] == "start") {
        tour.simulation.startDaemon(problem);
    } else if (words.size() == 2 && words[1] == "tools" && words[0] == "remove") {
        tour.simulation.removeTools();
    } else if (words.size() == 2 && words[1] == "tools" && words[0] == "place") {
        tour.simulation.placeTools(problem);
    } else {
        problem = "takes \"stop\" or \"start\", or \"remove tools\" or \"place tools\"";
    }
    return problem;
}

std::string desktop(Words words, Tour& tour) {
    if (words.size() != 2 || words[1] != "mail" || (words[0] != "install" && words[0] != "remove"))
        return "takes \"install mail\" or \"remove mail\"";
    constexpr const char* failure = "the stand-in for a mail program cannot be written";
    if (words[0] == "remove") return tour.desktop.removeMail() ? "" : failure;
    if (tour.messageFile.empty()) {
        std::string problem;
        tour.messageFile = tour.folder.claim("message.eml", problem);
        if (!problem.empty()) return problem;
    }
    return tour.desktop.installMail(tour.messageFile) ? "" : failure;
}

std::string background(Words words, Tour& tour) {
    if (!words.empty()) return "takes nothing";
    seat::applicationDidEnterBackground();
    tour.stage.settle();
    return {};
}

std::string size(Words words, Tour& tour) {
    const auto values = numbers(words);
    if (values.size() != 3 || *std::min_element(values.begin(), values.end()) <= 0)
        return "takes three numbers above 0";
    if (values[0] * values[1] * values[2] * values[2] > mostPixels)
        return "these are more pixels than a window may have";
    tour.stage.resize({values[0], values[1]}, values[2]);
    tour.stage.settle();
    return {};
}

struct Verb {
    std::string_view name;
    std::string (*perform)(Words words, Tour& tour);
};

constexpr Verb verbs[] = {{"tap", tap},
                          {"drag", drag},
                          {"scroll", scroll},
                          {"key", key},
                          {"step", step},
                          {"wait", waitForSomething},
                          {"picture", picture},
                          {"say", say},
                          {"watch", watch},
                          {"write", write},
                          {"simulation", simulation},
                          {"desktop", desktop},
                          {"background", background},
                          {"size", size}};

std::string asText(const ScriptLine& line) {
    std::string text;
    for (const auto& word : line.words) {
        if (!text.empty()) text += ' ';
        text += word.find(' ') == std::string::npos ? word : '"' + word + '"';
    }
    return text;
}

} // namespace

std::string app::perform(const ScriptLine& line, Tour& tour) {
    const auto& word = line.words.front();
    for (const Verb& verb : verbs) {
        if (verb.name != word) continue;
        if (word != "say") tour.recorder.note("> " + asText(line));
        auto problem = verb.perform(Words(line.words).subspan(1), tour);
        if (!problem.empty()) problem.insert(0, word + ": ");
        return problem;
    }
    return "there is no step called " + word;
}

std::string app::takePicture(const std::string& name, Tour& tour) {
    std::string file = NSStringWithFormat("%03d-", ++tour.pictures);
    for (const char c : name) file += std::isalnum(static_cast<unsigned char>(c)) ? c : '-';
    file += ".png";
    std::string problem;
    const std::string path = tour.folder.claim(file, problem);
    if (path.empty()) return problem;
    if (!tour.stage.writePicture(path)) return "the picture cannot be written";
    tour.recorder.note("picture " + file);
    return {};
}
