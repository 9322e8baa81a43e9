#pragma once

// How to pair a PS3 controller from a computer: the message body (HTML, one line) and the web page with the same. The
// body's link targets are unquoted attribute values, so they hold no space, quote, "=" or angle bracket as it stands.

// Targets that others own are their public pages; those of our own site use a reserved name until there is one.
#define JVN_SITE "http://joyvane.quorrel.example"
#define JVN_SIXAXIS_TOOL_PAGE "http://www.dancingpixelstudios.com/sixaxiscontroller/tool.html"
#define JVN_SIXAXIS_HELP_PAGE "https://help.ubuntu.com/community/Sixaxis"

inline constexpr const char* pairingInstructionsURL = JVN_SITE "/sixpair_instructions.html";

inline constexpr const char* pairingInstructionsHTML =
    "<p><h1>Pairing Your PS3 Controller</h1> Note: this needs to be done only the first time "
    "<h2>Mac OS X:</h2><ol>"
    "<li>Download <a href=" JVN_SITE "/sixpairmac.zip>SixPair</a></li>"
    "<li>Connect both your PS3 controller and your iOS device to your Mac</li>"
    "<li>Click the Pair controller button</li>"
    "<li>Disconnect your controller.</li>"
    "<li>Done!</li></ol>"
    "<h2>Windows:</h2><ol>"
    "<li>Download and install <a href=" JVN_SIXAXIS_TOOL_PAGE ">SixaxisPairTool</a></li>"
    "<li>Connect both your iOS device and PS3 controller to your Windows computer</li>"
    "<li>Run SixaxisPairTool and insert your iOS device Bluetooth address (you can find it in "
    "Settings > General > About > Bluetooth)</li>"
    "<li>Click Update and disconnect your controller.</li>"
    "<li>Done!</li></ol>"
    "<h2>Linux:</h2><ol>"
    "<li>Download and compile <a href=" JVN_SIXAXIS_HELP_PAGE
    "?action&#61;AttachFile&amp;do&#61;get&amp;target&#61;sixpair.c>sixpair</a></li>"
    "<li>Connect both your iOS device and PS3 controller to your Linux PC</li>"
    "<li>Run sixpair and give it your iOS device Bluetooth address as the first CLI parameter</li>"
    "<li>Disconnect the controller</li>"
    "<li>Done!</li>"
    "<li>More in-depth instructions <a href=" JVN_SIXAXIS_HELP_PAGE ">here</a>.</li></ol></p>";

#undef JVN_SITE
#undef JVN_SIXAXIS_TOOL_PAGE
#undef JVN_SIXAXIS_HELP_PAGE
