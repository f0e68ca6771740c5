"""Pretty printers of the orvobase classes, which gdb loads by itself with the library."""

import gdb
import gdb.printing


# The fields of the classes, behind the pointer to their virtual operations. The debug information
# of a client mostly just declares these classes, but clients rest on where the fields stand.
FIELDS = {
    "CQSString": (("m_pData", "char *"), ("m_nLen", "int")),
    "CQWString": (("m_pData", "wchar_t *"), ("m_nDataLen", "int")),
    "CMLDataBuf": (("m_wMode", "short"), ("m_dwMaxSize", "unsigned int"),
                   ("m_dwUsedSize", "unsigned int"), ("m_pData", "unsigned char *")),
    "CQActive": (("m_nReserved", "int"), ("m_nPriority", "int"), ("m_nReady", "int"),
                 ("m_nStatus", "int")),
}


def type_of(text):
    """The type of a text such as "char *"."""
    name = text.rstrip(" *")
    found = gdb.lookup_type(name)
    for _ in range(text.count("*")):
        found = found.pointer()
    return found


def at(address, offset, text):
    """What lies so many bytes behind an address, as the type of a text."""
    place = address.cast(type_of("char *")) + offset
    return place.cast(type_of(text).pointer()).dereference()


def fields(value, name):
    """The fields of an object of the class."""
    result = {}
    offset = type_of("char *").sizeof
    for field, text in FIELDS[name]:
        size = type_of(text).sizeof
        offset += -offset % size
        result[field] = at(value.address, offset, text)
        offset += size
    return result


def list_items(qlist):
    """The active objects of a QList at an address, of either generation of Qt."""
    word = type_of("char *").sizeof
    if any("Qt5Core" in objfile.filename for objfile in gdb.objfiles()):
        data = at(qlist, 0, "char *")
        begin, end = int(at(data, 8, "int")), int(at(data, 12, "int"))
        start = data + 16 + begin * word
        count = end - begin
    else:
        start = at(qlist, word, "char *")
        count = int(at(qlist, 2 * word, "long"))
    return [at(start, i * word, "char *") for i in range(count)]


class String:
    """CQSString and CQWString: the text, zero units included."""

    def __init__(self, value, name, length, encoding):
        found = fields(value, name)
        self.data = found["m_pData"]
        self.length = int(found[length])
        self.encoding = encoding

    def to_string(self):
        if int(self.data) == 0 or self.length <= 0:
            return ""
        return self.data.lazy_string(encoding=self.encoding, length=self.length)

    def display_hint(self):
        return "string"


class Buffer:
    """CMLDataBuf: how full it is, and its used bytes."""

    def __init__(self, value):
        found = fields(value, "CMLDataBuf")
        self.data = found["m_pData"]
        self.used = int(found["m_dwUsedSize"])
        self.size = int(found["m_dwMaxSize"])

    def to_string(self):
        return "%d of %d bytes used" % (self.used, self.size)

    def children(self):
        if self.used > 0:
            array = self.data.dereference().type.array(self.used - 1)
            yield "data", self.data.cast(array.pointer()).dereference()


def active_text(address):
    """What the scheduler looks at of the active object at an address."""
    table = "info symbol %d" % int(at(address, 0, "char *"))
    found = fields(at(address, 0, "char"), "CQActive")
    return "%s, %s, priority %d, status %d" % (
        gdb.execute(table, to_string=True).replace("vtable for ", "").split(" + ")[0],
        "ready" if int(found["m_nReady"]) == 1 else "idle",
        int(found["m_nPriority"]), int(found["m_nStatus"]))


class Active:
    """CQActive: what the scheduler looks at."""

    def __init__(self, value):
        self.address = value.address

    def to_string(self):
        return active_text(self.address)


class Scheduler:
    """CQSchedulerInstance: the active objects by priority, from the lists behind the QThread."""

    def __init__(self, value):
        word = type_of("char *").sizeof
        lists = [at(value.address, (2 + priority) * word, "char *") for priority in range(5)]
        self.items = [(priority, list_items(qlist))
                      for priority, qlist in enumerate(lists) if int(qlist) != 0]

    def to_string(self):
        return "%d active objects" % sum(len(items) for _, items in self.items)

    def children(self):
        for priority, items in self.items:
            for i, item in enumerate(items):
                yield "list %d [%d]" % (priority, i), active_text(item)


class TreeNode:
    """CQBTreeNodeBase: the nodes in their order for a tree's header, else the links."""

    def __init__(self, value):
        self.value = value
        root = value["m_pParent"]
        self.is_header = int(value["m_nColor"]) == 0 and (
            int(root) == 0 or root["m_pParent"] == value.address)

    def nodes(self, node):
        """In order; with a stack of its own, since a broken tree may be deep."""
        above = []
        while above or int(node) != 0:
            while int(node) != 0:
                above.append(node)
                node = node["m_pLeft"]
            node = above.pop()
            yield node
            node = node["m_pRight"]

    def to_string(self):
        if self.is_header:
            return "tree"
        return "red node" if int(self.value["m_nColor"]) == 0 else "black node"

    def children(self):
        if self.is_header:
            for i, node in enumerate(self.nodes(self.value["m_pParent"])):
                yield "[%d]" % i, node
        else:
            for link in ("m_pParent", "m_pLeft", "m_pRight"):
                yield link, self.value[link]


def register(objfile):
    printers = gdb.printing.RegexpCollectionPrettyPrinter("orvobase")
    add = printers.add_printer
    add("CQSString", "^CQSString$", lambda value: String(value, "CQSString", "m_nLen", "UTF-8"))
    add("CQWString", "^CQWString$",
        lambda value: String(value, "CQWString", "m_nDataLen", "UTF-32"))
    add("CMLDataBuf", "^CMLDataBuf$", Buffer)
    add("CQActive", "^CQActive$", Active)
    add("CQSchedulerInstance", "^CQSchedulerInstance$", Scheduler)
    add("CQBTreeNodeBase", "^CQBTreeNodeBase$", TreeNode)
    gdb.printing.register_pretty_printer(objfile, printers, replace=True)


register(gdb.current_objfile())
