"""Stand-ins that a desktop test starts beside the program, each writing down what it got:
  stand_ins.py file-manager OUT   owns org.freedesktop.FileManager1 on the session bus and
                                  writes each URI given to ShowItems on a line of OUT
  stand_ins.py silent-file-manager OUT  the same, but it never answers a call
  stand_ins.py drop-target OUT X Y  a window at X, Y that takes drops and writes, for each,
                                  the type and the bytes it got, one "type: bytes" a line, with
                                  a carriage return and a line end in the bytes as \\r and \\n
Each writes OUT.ready when it is ready, and runs until it is killed."""

import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gio, GLib, Gtk  # noqa: E402

FILE_MANAGER = """
<node>
  <interface name="org.freedesktop.FileManager1">
    <method name="ShowItems">
      <arg type="as" name="uris" direction="in"/>
      <arg type="s" name="startupId" direction="in"/>
    </method>
  </interface>
</node>
"""


def ready(out):
    open(out + ".ready", "w").close()


def file_manager(out, answers=True):
    interface = Gio.DBusNodeInfo.new_for_xml(FILE_MANAGER).interfaces[0]
    unanswered = []

    def on_call(connection, sender, path, name, method, parameters, invocation):
        uris, _ = parameters.unpack()
        with open(out, "a") as record:
            for uri in uris:
                record.write(uri + "\n")
        if answers:
            invocation.return_value(None)
        else:
            unanswered.append(invocation)

    def on_bus(connection, name):
        connection.register_object("/org/freedesktop/FileManager1", interface, on_call)

    Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.FileManager1",
                     Gio.BusNameOwnerFlags.NONE, on_bus, lambda *_: ready(out), None)
    GLib.MainLoop().run()


def drop_target(out, x, y):
    window = Gtk.Window(title="Drop here")
    window.set_default_size(300, 300)
    window.move(x, y)
    targets = [Gtk.TargetEntry.new("text/uri-list", 0, 0),
               Gtk.TargetEntry.new("text/plain", 0, 1)]
    window.drag_dest_set(Gtk.DestDefaults.MOTION | Gtk.DestDefaults.HIGHLIGHT, targets,
                         Gdk.DragAction.COPY)
    wanted = []

    def on_drop(widget, context, px, py, time):
        wanted[:] = [Gdk.Atom.intern(name, False) for name in ("text/uri-list", "text/plain")]
        widget.drag_get_data(context, wanted[0], time)
        return True

    def on_data(widget, context, px, py, data, info, time):
        with open(out, "ab") as record:
            got = bytes(data.get_data()).replace(b"\r", b"\\r").replace(b"\n", b"\\n")
            record.write(data.get_target().name().encode() + b": " + got + b"\n")
        wanted.pop(0)
        if wanted:
            widget.drag_get_data(context, wanted[0], time)
        else:
            Gtk.drag_finish(context, True, False, time)

    window.connect("drag-drop", on_drop)
    window.connect("drag-data-received", on_data)
    window.connect("map-event", lambda *_: ready(out))
    window.show_all()
    Gtk.main()


if __name__ == "__main__":
    if sys.argv[1] == "file-manager":
        file_manager(sys.argv[2])
    elif sys.argv[1] == "silent-file-manager":
        file_manager(sys.argv[2], answers=False)
    else:
        drop_target(sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
