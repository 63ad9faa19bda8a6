"""What is on a screen: characters, each with a style such as "black on white"."""

import re

VGA_COLOURS = ('black', 'blue', 'green', 'cyan', 'red', 'magenta', 'brown', 'white')
NORMAL = 'white on black'
HIGHLIGHT = 'black on white'


class Screen:
    def __init__(self, characters, styles):
        """Rows of characters, and of their styles."""
        self.rows = [''.join(row).rstrip() for row in characters]
        self.styles = styles
        self.text = '\n'.join(self.rows)

    def style_of(self, text):
        """The one style of a text, or None."""
        for row, styles in zip(self.rows, self.styles):
            start = row.find(text)
            if start >= 0:
                found = set(styles[start:start + len(text)])
                return found.pop() if len(found) == 1 else None
        return None

    def highlights(self):
        """The numbers of all highlighted entries."""
        return [int(entry[1]) for row, styles in zip(self.rows, self.styles)
                if (entry := re.match(r'\[(\d)\] ', row)) and styles[entry.end()] == HIGHLIGHT]

    def has_menu(self, highlighted=None):
        """Whether one whole menu and nothing else is there, and one or no entry is highlighted."""
        wanted = [] if highlighted is None else [highlighted]
        return ('This tool will update' in self.rows[0] and self.text.count('[1] ') == 1 and
                self.text.count('(c) ') == 1 and self.text.rstrip().split('\n')[-1].startswith('(c) ') and
                self.highlights() == wanted)


def vga_screen(dump):
    """From the bytes of /dev/vcsaN, see vcs(4)."""
    columns = dump[1]
    characters, styles = [], []
    for start in range(4, len(dump), 2 * columns):
        row = dump[start:start + 2 * columns]
        characters.append([chr(code) for code in row[::2]])
        styles.append([vga_style(attribute) for attribute in row[1::2]])
    return Screen(characters, styles)


def vga_style(attribute):
    return (('bold ' if attribute & 8 else '') + VGA_COLOURS[attribute & 7] + ' on ' +
            VGA_COLOURS[attribute >> 4 & 7])


def emulated_screen(emulator):
    """From a pyte.Screen."""
    cells = [[emulator.buffer[y][x] for x in range(emulator.columns)] for y in range(emulator.lines)]
    return Screen([[cell.data for cell in row] for row in cells],
                  [[emulated_style(cell) for cell in row] for row in cells])


def emulated_style(cell):
    colours = [cell.fg.replace('default', 'white'), cell.bg.replace('default', 'black')]
    if cell.reverse:
        colours.reverse()
    return ('bold ' if cell.bold else '') + ' on '.join(colours)
