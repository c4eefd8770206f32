"""A screen without a monitor, and a hand on its mouse and keys."""
import ctypes
import os
import pathlib
import re
import subprocess

SIZE = (880, 476)


class Screen:
    """An X server of its own; the program's window stands in its upper left corner."""

    def __init__(self, folder, density=96, scale=1, size=SIZE):
        read, write = os.pipe()
        width, height = (int(length * scale) for length in size)
        # Networks of their own share /tmp: a number of this process's own, so that no two screens meet.
        self.server = subprocess.Popen(["Xvfb", f":{os.getpid()}", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24", "-dpi",
                                        str(density), "-noreset", "-nolisten", "tcp"], pass_fds=[write], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as told:
            self.display = ":" + told.readline().strip()
        self.env = dict(os.environ, DISPLAY=self.display)
        self.folder = folder

    def do(self, *words):
        """One command of xdotool."""
        subprocess.run(["xdotool", *map(str, words)], env=self.env, check=True, stdout=subprocess.DEVNULL)

    def click(self, x, y):
        self.do("mousemove", x, y, "click", 1)

    def keys(self, *names):
        self.do("key", "--delay", 20, *names)

    def type(self, text):
        self.do("type", "--delay", 20, text)

    def enter(self, x, y, text):
        """Another text for an edit box."""
        self.click(x, y)
        self.keys("ctrl+a")
        self.keys("BackSpace")
        if text:
            self.type(text)
        self.keys("Return")

    def picture(self, name, keep):
        """Takes a picture; `keep` is the folder in which it outlives the run."""
        pathlib.Path(keep).mkdir(parents=True, exist_ok=True)
        path = pathlib.Path(keep) / f"{name}.png"
        subprocess.run(["import", "-window", "root", str(path)], env=self.env, check=True)
        return path

    def colour(self, x, y):
        """Of one point, as (red, green, blue)."""
        path = self.picture("now", self.folder)
        text = subprocess.run(["convert", str(path), "-format", f"%[fx:int(255*p{{{x},{y}}}.r)],%[fx:int(255*p{{{x},{y}}}.g)],"
                               f"%[fx:int(255*p{{{x},{y}}}.b)]", "info:"], check=True, capture_output=True, text=True)
        return tuple(int(part) for part in text.stdout.split(","))

    def shows(self, x, y, width, height, colour):
        """Whether any point of a rectangle has this colour, or nearly: thin letters are smoothed."""
        path = self.picture("now", self.folder)
        text = subprocess.run(["convert", str(path), "-crop", f"{width}x{height}+{x}+{y}", "-unique-colors", "txt:-"],
                              check=True, capture_output=True, text=True).stdout
        found = [tuple(map(int, point)) for point in re.findall(r"\((\d+),(\d+),(\d+)\)", text)]
        return any(max(abs(a - b) for a, b in zip(point, colour)) < 50 for point in found)

    def window(self):
        """The program's window, as X numbers it."""
        return int(subprocess.run(["xdotool", "search", "--name", "^Skylantern$"], env=self.env, check=True,
                                  capture_output=True, text=True).stdout.split()[-1])

    def client(self):
        """Where the panel's own area begins, inside of a frame that the window may draw itself."""
        text = subprocess.run(["xdotool", "getwindowgeometry", "--shell", str(self.window())], env=self.env, check=True,
                              capture_output=True, text=True).stdout
        x, y, width, height = (int(re.search(rf"{name}=(-?\d+)", text)[1]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
        border = (width - SIZE[0]) // 2
        return x + border, y + height - SIZE[1] - border

    def close_button(self):
        """What a desktop sends when the user closes the window."""
        window = self.window()
        x11 = ctypes.CDLL("libX11.so.6")
        x11.XOpenDisplay.restype = x11.XInternAtom.restype = x11.XDefaultRootWindow.restype = ctypes.c_void_p
        x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]

        class Message(ctypes.Structure):
            _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                        ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message", ctypes.c_ulong),
                        ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("padding", ctypes.c_long * 12)]

        display = ctypes.c_void_p(x11.XOpenDisplay(self.display.encode()))
        message = Message(type=33, window=window, format=32)  # ClientMessage
        message.message = x11.XInternAtom(display, b"WM_PROTOCOLS", 0)
        message.data[0] = x11.XInternAtom(display, b"WM_DELETE_WINDOW", 0)
        x11.XSendEvent(display, ctypes.c_ulong(window), 0, ctypes.c_long(0), ctypes.byref(message))
        x11.XCloseDisplay(display)

    def end(self):
        self.server.terminate()
        self.server.wait()
