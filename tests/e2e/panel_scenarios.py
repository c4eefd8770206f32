"""The panel on a real screen, with real clicks and keys. Scenarios as in scenarios.py."""
import shutil

from airport_scenarios import airport_file, serve, standing
from harness import Failure

GREEN, YELLOW, RED, BLACK = (50, 205, 50), (255, 255, 0), (255, 0, 0), (0, 0, 0)
SIM, FEED, MESSAGE = (400, 40), (430, 40), (870, 470)  # points in the two lamps and the message line


def register(scenario, recording, feed_line):

    def shows(world, screen, what, **points):
        """Waits for the lamps and the message line to have these colours, and keeps a picture."""
        places = {"sim": SIM, "feed": FEED, "message": MESSAGE}
        world.wait_for(lambda: all(screen.colour(*places[name]) == colour for name, colour in points.items()), what)
        screen.picture(what, world.build / "screenshots")

    def saved(world, name, value):
        try:
            world.wait_for_setting(name, value)
        except Failure:
            for screen in world.screens:
                screen.picture(f"not-saved-{name}", world.build / "screenshots")
            raise

    @scenario
    def the_panel_en_route(world):
        """Lamps go from red and black to green; the close button is the orderly end; the place is stored."""
        screen = world.screen()
        program = world.program()
        world.wait_for_log("Waiting for MSFS 2020")
        shows(world, screen, "waiting", sim=RED, feed=BLACK, message=GREEN)
        world.simulator("--on-ground", "0", "--alt", "9000")
        world.wait_for_log("Waiting for RealTraffic")
        shows(world, screen, "waiting-for-realtraffic", sim=GREEN, feed=RED)
        world.real_traffic(recording())
        shows(world, screen, "en-route", sim=GREEN, feed=GREEN)
        screen.close_button()
        world.check(program.wait() == 0, "exit status 0")
        world.check("Exiting: USER CLOSED SIM" in world.log(), "an orderly end")
        saved(world, "MAIN_WINDOW_X", 0)
        world.check("lf_text" not in world.log(), "no text was refused")

    @scenario
    def the_panel_at_an_airport(world):
        """Stands, static aircraft and the learned updates are told."""
        screen = world.screen()
        world.settings.update({"MAX_PARK_SEL": "100"})
        world.write_parameters()
        hours = ",".join(map(str, range(48)))
        option = "".join(f'<opt reg="G-EUU{day}" airl="BAW" type="A320" day="{day}" hh="{hours}" cs="BAW{day}0" />'
                         for day in range(1, 8))
        serve(world, airport_file(option=option))
        trace = world.folder / "trace.jsonl"
        world.simulator("--trace", trace)
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        world.real_traffic(standing(feed_line))
        world.wait_for(lambda: trace.exists() and '"tail":"BAW' in trace.read_text(), "a static aircraft")
        world.wait_for(lambda: screen.shows(0, 392, 60, 28, GREEN), "the airport's code in green")
        world.wait_for(lambda: screen.shows(326, 373, 28, 12, BLACK), "the parking settings are free again")
        shows(world, screen, "at-an-airport", sim=GREEN, feed=GREEN)
        program.signal()
        world.check(program.wait() == 0, "exit status 0")

    @scenario
    def the_panel_by_mouse_and_keys(world):
        """Switches, lists, texts and buttons act, by clicks and by keys; the simulator is switched, a path is set."""
        screen = world.screen()
        program = world.program()
        world.wait_for_log("Waiting for MSFS 2020")
        # The frame of a box is black once the box can be used.
        world.wait_for(lambda: screen.colour(652, 149) == BLACK, "the boxes are enabled")
        screen.click(658, 155)
        saved(world, "LOG", "false")
        screen.keys("Tab", "space")  # the next box in reading order
        saved(world, "ALWAYS_ON_TOP", "true")
        screen.click(235, 205)
        screen.keys("Up", "Return")
        saved(world, "MATCHING_DEPTH", 3)
        screen.enter(240, 267, "klm123")
        saved(world, "BLOCK_CALLSIGN", "KLM123")
        screen.enter(240, 267, "x")
        world.wait_for_log("callsign 'x' is not valid")
        screen.click(350, 267)
        saved(world, "BLOCK_CALLSIGN", "")
        world.check("no more blocking of live aircraft 'KLM123'" in world.log(), "the button acts")
        screen.keys("Escape")
        screen.enter(300, 127, "/nowhere")
        world.wait_for_log("This install path does not exist: /nowhere")
        world.check(program.running(), "Escape closes nothing")
        moved = world.folder / "elsewhere"
        shutil.copytree(world.packages, moved)
        screen.enter(300, 127, moved / "Community")
        world.wait_for_log("Community path found, Skylantern will restart ...")
        saved(world, "MSFS_INSTALL_PATH", moved)
        world.wait_for_log("Waiting for MSFS 2020", 2)
        screen.click(50, 125)
        screen.keys("Down", "Return")
        saved(world, "SIM_CHOICE", "MSFS 2024")
        world.wait_for_log("Switching Simulator to MSFS 2024")
        world.wait_for_log("Waiting for MSFS 2024")
        program.signal()
        world.check(program.wait() == 0, "exit status 0")

    @scenario
    def the_panel_shows_an_error(world):
        """The message line is red until the user types the path that is missing."""
        screen = world.screen()
        world.settings["MSFS_INSTALL_PATH"] = ""
        world.write_parameters()
        program = world.program()
        world.wait_for_log("Error 150: No install path detected")
        shows(world, screen, "error", sim=RED, feed=BLACK, message=RED)
        screen.enter(300, 127, world.packages)
        world.wait_for_log("Waiting for MSFS 2020")
        shows(world, screen, "error-mended", sim=RED, message=GREEN)
        program.signal()
        world.check(program.wait() == 0, "exit status 0")

    @scenario
    def the_panel_after_the_wrong_simulator(world):
        """The error says to select the right one in the list, and that does it; the link is taken up again."""
        screen = world.screen()
        world.settings["SIM_CHOICE"] = "MSFS 2024"
        world.write_parameters()
        world.simulator()
        program = world.program()
        world.real_traffic(recording())
        for time in (1, 2):
            world.wait_for_log("Error 71: MSFS 2020 is running ...", time)
            shows(world, screen, "wrong-simulator", sim=RED, message=RED)
            screen.click(50, 125)
            screen.keys("Up", "Return")
            saved(world, "SIM_CHOICE", "MSFS 2020")
            world.wait_for_log("RealTraffic connected", time)
            if time == 1:
                screen.click(50, 125)
                screen.keys("Down", "Return")
                world.wait_for_log("Switching Simulator to MSFS 2024")
        program.signal()
        world.check(program.wait() == 0, "exit status 0")

    @scenario
    def the_panel_on_a_dense_screen(world):
        """Twice the density is twice the size; a display that goes away ends the program in order."""
        screen = world.screen(density=192, scale=2)
        program = world.program()
        world.wait_for_log("Waiting for MSFS 2020")
        world.wait_for(lambda: screen.colour(800, 80) == RED and screen.colour(1740, 940) == GREEN, "a larger window")
        screen.picture("dense", world.build / "screenshots")
        screen.click(2 * 658, 2 * 155)
        saved(world, "LOG", "false")
        screen.end()
        world.check(program.wait() == 0, "exit status 0")
        world.check("Exiting: USER CLOSED SIM" in world.log(), "an orderly end")
