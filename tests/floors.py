"""The code's floors (README, "How the code is laid out"): each folder of src/ includes only from
its own floor and the floors below it; only the engine's two floors name SQLite; the tools link
no Qt Widgets and no Qt Gui.   floors.py SRC_DIR TOOL..."""
import os
import re
import subprocess
import sys

FLOORS = {"data": 0, "care": 1, "output": 2, "widgets": 3, "app": 5}  # every other folder: a screen's, 4
src, tools = sys.argv[1], sys.argv[2:]
faults = []
for folder in sorted(os.listdir(src)):
    for name in sorted(os.listdir(os.path.join(src, folder))) if os.path.isdir(os.path.join(src, folder)) else []:
        path, here = os.path.join(folder, name), FLOORS.get(folder, 4)
        text = open(os.path.join(src, path), errors="replace").read()
        for included in re.findall(r'^\s*#\s*include\s+"([^"/]+)/', text, re.M):
            if os.path.isdir(os.path.join(src, included)) and FLOORS.get(included, 4) > here:
                faults.append("%s includes from %s/, a floor above its own" % (path, included))
        if here > 1 and "sqlite3" in text:
            faults.append("%s names sqlite3 outside data/ and care/" % path)
for tool in tools:
    linked = subprocess.run(["ldd", tool], capture_output=True, text=True, check=True).stdout
    faults += ["%s links %s" % (os.path.basename(tool), lib) for lib in ("libQt6Widgets", "libQt6Gui") if lib in linked]
print("\n".join(faults) or "every include stays on its floor or below")
print("%d passed, %d failed" % (0 if faults else 1, len(faults)))
sys.exit(1 if faults else 0)
