#pragma once

// What a line of a tour's script can say.
//
//   tap ROLE NAME                      touch the middle of a node, scrolling to it first
//   tap ROLE NAME at FX FY             touch a place of it, in fractions of its width and height
//   drag ROLE NAME FX FY to FX FY      a finger from one place of a node to another
//   scroll POINTS                      the wheel over the middle of the window
//   key NAME                           a key down and up: a letter, a digit, return, escape, tab, space, up, ...
//   step ROLE NAME DIRECTION [large]   an arrow's step in a slider or canvas
//   wait ROLE NAME                     until there is such a node (ten seconds at most, as for all that follow)
//   wait gone ROLE NAME                until there is none
//   wait value ROLE NAME VALUE         until its value begins like that
//   wait noted TEXT [TIMES]            until the log has lines with the text, so many of them (1)
//   picture NAME                       the next numbered picture
//   say TEXT                           a heading in the log
//   watch notification NAME            the log gets each post of it
//   watch file PATH                    the log gets the changes of a property list
//   write FILE LINE...                 replaces a file, by its logical path
//   simulation stop | start            ends the simulated daemon, and starts it again
//   simulation remove tools            takes the simulated tools away; "simulation place tools" puts them back
//   desktop install mail               from now on the desktop has a program for messages (it has a browser all along);
//   desktop remove mail                from now on it has none
//   background                         the window is put away, and is back at once
//   size WIDTH HEIGHT SCALE            points, and pixels a point
//
// Roles: any, row, button, switch, slider, canvas, text, heading, list, image, alert, progress, bar, group.

#include "app/tour/Script.h"

#include <string>

namespace app {

class Recorder;
class Simulation;
class Stage;
class StandInDesktop;
class TourFolder;

struct Tour {
    Stage& stage;
    Recorder& recorder;
    Simulation& simulation;
    StandInDesktop& desktop;
    TourFolder& folder;           // where the pictures go
    std::string messageFile = {}; // what was handed to the program for messages; empty while there was none
    int pictures = 0;
};

// Does what the line says. Empty, or what went wrong.
std::string perform(const ScriptLine& line, Tour& tour);

// The next numbered picture. Empty, or why it cannot be written.
std::string takePicture(const std::string& name, Tour& tour);

} // namespace app
