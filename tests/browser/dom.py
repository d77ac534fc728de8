"""The tree that a browser made of a page, read from its own dump of it."""

from html.parser import HTMLParser

WITHOUT_END = {"area", "base", "br", "col", "embed", "hr", "img", "input", "link", "meta", "source", "track", "wbr"}


class Element:
    def __init__(self, name, attributes=()):
        self.name = name
        self.attributes = dict(attributes)
        self.parts = []  # texts and elements, in their order

    def text(self):
        """All text below, each run of blanks as one blank."""
        return plain("".join(part if isinstance(part, str) else part.text_as_is() for part in self.parts))

    def text_as_is(self):
        return "".join(part if isinstance(part, str) else part.text_as_is() for part in self.parts)

    def every(self, name=None):
        """The elements of that name below this one, of any name when none is given, in document order."""
        for part in self.parts:
            if isinstance(part, Element):
                if name in (None, part.name):
                    yield part
                yield from part.every(name)

    def children(self, name):
        return [part for part in self.parts if isinstance(part, Element) and part.name == name]

    def texts(self, name):
        return [element.text() for element in self.every(name)]


class Reader(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open = [Element("#document")]

    def handle_starttag(self, name, attributes):
        element = Element(name, attributes)
        self.open[-1].parts.append(element)
        if name not in WITHOUT_END:
            self.open.append(element)

    def handle_endtag(self, name):
        if self.open[-1].name != name:
            raise AssertionError(f"the browser closes {name} within {self.open[-1].name}")
        self.open.pop()

    def handle_data(self, text):
        self.open[-1].parts.append(text)


def plain(text):
    return " ".join(text.split())


def read(dump):
    reader = Reader()
    reader.feed(dump)
    reader.close()
    return reader.open[0]
