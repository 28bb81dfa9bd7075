"""The Bluetooth LE side of the stand-in for BlueZ: devices with services and characteristics (GATT), which are
connected, asked to notify and written to. Behind each stands the adapter on the stand-in's TCP port."""
import socket

import dbus
from gi.repository import GLib

ADAPTER = "/org/bluez/hci0"
MANAGER = "org.freedesktop.DBus.ObjectManager"
DEVICE = "org.bluez.Device1"
SERVICE = "org.bluez.GattService1"
CHARACTERISTIC = "org.bluez.GattCharacteristic1"
PACKET_HEAD = 3  # bytes of a packet that are not its value


class Refusal(Exception):
    """A call that is answered with an error: its name behind "org.bluez.Error." and its text."""


def whole_uuid(text):
    return f"0000{text}-0000-1000-8000-00805f9b34fb" if len(text) == 4 else text


class Characteristic:
    """`line`: "fff0 fff2 write,write-without-response", with the service it belongs to."""

    def __init__(self, device, number, line):
        service, uuid, flags = line.split()
        self.device, self.service_uuid, self.uuid = device, whole_uuid(service), whole_uuid(uuid)
        self.flags, self.notifying = flags.split(","), False
        self.service_path = f"{device.path}/service{device.service_number(self.service_uuid):04x}"
        self.path = f"{self.service_path}/char{number:04x}"

    def properties(self):
        return {"UUID": self.uuid, "Service": dbus.ObjectPath(self.service_path), "Notifying": self.notifying,
                "Flags": dbus.Array(self.flags, "s")} | (
                    {"MTU": dbus.UInt16(self.device.mtu)} if self.device.mtu else {})


class LeDevice:
    """`lines`: its characteristics; those of the first service stand before the adapter (set_le "behind" chooses
    another), all others say and do nothing. `mtu`: 0 where BlueZ does not tell it; then it is 23."""

    first_name = ""

    def __init__(self, address, name, known, lines, mtu):
        self.address, self.name, self.known, self.mtu = address, name, bool(known), int(mtu)
        self.path = f"{ADAPTER}/dev_{address.replace(':', '_')}"
        self.services = list(dict.fromkeys(whole_uuid(line.split()[0]) for line in lines))
        self.characteristics = [Characteristic(self, 0x20 + at, line) for at, line in enumerate(lines)]
        self.behind = self.services[0] if self.services else ""
        self.random, self.paired, self.wants_pairing, self.keeps_notify = True, False, False, False
        self.services_ms, self.drops_after = 20, 0
        self.connected = self.resolved = False
        self.adapter = None  # the socket of the link to it

    def service_number(self, uuid):
        return 0x10 + self.services.index(uuid)

    def properties(self):
        return {"Address": self.address, "AddressType": "random" if self.random else "public", "Name": self.name,
                "Alias": self.name, "Paired": self.paired, "Connected": self.connected,
                "ServicesResolved": self.resolved, "UUIDs": dbus.Array(self.services, "s"),
                "Adapter": dbus.ObjectPath(ADAPTER)}

    def objects(self):
        """Its services and characteristics, once they are known."""
        if not self.resolved:
            return {}
        found = {f"{self.path}/service{self.service_number(uuid):04x}":
                 {SERVICE: {"UUID": uuid, "Device": dbus.ObjectPath(self.path), "Primary": True}}
                 for uuid in self.services}
        return found | {one.path: {CHARACTERISTIC: one.properties()} for one in self.characteristics}

    def speaker(self):
        """The characteristic through which the adapter speaks; None while nobody has asked it to."""
        return next((one for one in self.characteristics if one.notifying and one.service_uuid == self.behind),
                    None)

    def longest(self):
        return (self.mtu or 23) - PACKET_HEAD


class Gatt:
    """What the service does for LE devices. Of the class that it is a part of it uses devices, port, received, writes,
    powered, tell_changed() and signal()."""

    # --- what the tests change ---

    def put_le_device(self, address, name, known, lines, mtu):
        """Replaces the device of the same address; see LeDevice."""
        self.drop(address)
        self.devices = [other for other in self.devices if other.address != address]
        self.devices.append(LeDevice(str(address), str(name), known, [str(one) for one in lines], mtu))

    def set_le(self, address, key, value):
        """"services_ms": how long its services take to be known, once connected; "behind": the service before the
        adapter; "random" address; "paired"; "wants_pairing" before it may be asked to notify; "keeps_notify": the
        service remembers who asked it to; "drops_after": so many writes it takes, then it is gone."""
        device = self.le_device(address)
        setattr(device, key, whole_uuid(str(value)) if key == "behind" else value)

    def drop(self, address):
        """The device breaks its connection, without a word."""
        device = self.le_device(address)
        if device and device.connected:
            self.end_connection(device)

    def forget(self, address):
        """BlueZ forgets it, connected or not."""
        device = self.le_device(address)
        self.devices.remove(device)
        self.end_connection(device, tell=False)
        self.signal("/", MANAGER, "InterfacesRemoved", "oas", device.path, [DEVICE])

    def notify(self, data):
        """What one adapter would say, without being asked, in one notification."""
        for device in self.le_devices():
            self.tell_value(device, bytes(data))

    def le_state(self, address):
        """"connected notifying" as far as it is."""
        device = self.le_device(address)
        return "s", " ".join(word for word, holds in (("connected", device.connected),
                                                      ("notifying", device.speaker())) if holds)

    # --- calls of the program ---

    def answer_Connect(self, message):
        device = self.connectable(message)
        if device.connected:
            raise Refusal("AlreadyConnected", "Already Connected")
        device.connected = True
        self.tell_changed(device.path, DEVICE, {"Connected": True})
        if self.port:
            device.adapter = socket.create_connection(("127.0.0.1", self.port))
            device.watch = GLib.unix_fd_add_full(
                GLib.PRIORITY_DEFAULT, device.adapter.fileno(), GLib.IO_IN | GLib.IO_HUP,
                lambda *_: self.adapter_speaks(device))
        if device.services_ms:
            GLib.timeout_add(device.services_ms, self.resolve, device)
        else:
            self.resolve(device)

    def resolve(self, device):
        if device.connected and not device.resolved:
            device.resolved = True
            for one in device.characteristics:
                if device.keeps_notify and getattr(one, "was_asked", False):
                    one.notifying = True
            for path, interfaces in device.objects().items():
                self.signal("/", MANAGER, "InterfacesAdded", "oa{sa{sv}}", path, interfaces)
            self.tell_changed(device.path, DEVICE, {"ServicesResolved": True})
        return False

    def disconnect_le(self, message):
        """False when the object is no LE device."""
        device = self.le_device_at(message.get_path())
        if device and device.connected:
            for one in device.characteristics:
                one.was_asked = False
            self.end_connection(device)
        return device is not None

    def answer_StartNotify(self, message):
        one = self.characteristic_of(message)
        if not {"notify", "indicate"} & set(one.flags):
            raise Refusal("NotSupported", "Operation is not supported")
        if one.device.wants_pairing and not one.device.paired:
            raise Refusal("NotPermitted", "Not paired")
        if one.notifying:
            raise Refusal("InProgress", "In Progress")
        one.notifying = one.was_asked = True
        self.tell_changed(one.path, CHARACTERISTIC, {"Notifying": True})

    def answer_StopNotify(self, message):
        one = self.characteristic_of(message)
        if not one.notifying:
            raise Refusal("Failed", "No notify session started")
        one.notifying = one.was_asked = False
        self.tell_changed(one.path, CHARACTERISTIC, {"Notifying": False})

    def answer_WriteValue(self, message, value, options):
        one, kind = self.characteristic_of(message), str(options.get("type", ""))
        wanted = {"command": "write-without-response", "request": "write"}.get(kind)
        if wanted not in one.flags:
            raise Refusal("NotSupported", "Operation is not supported")
        if len(value) > one.device.longest():
            raise Refusal("Failed", "Failed to initiate write")
        self.writes.append(f"{kind} {len(value)}")
        data = bytes(value)
        if one.service_uuid != one.device.behind:
            return
        self.received += data
        one.device.drops_after -= 1
        if one.device.drops_after == 0:
            self.end_connection(one.device)
        elif one.device.adapter:
            one.device.adapter.sendall(data)

    def take_writes(self):
        """"command 5" for each write since it was asked for last, joined by ", "."""
        taken, self.writes = self.writes, []
        return "s", ", ".join(taken)

    # --- the far ends ---

    def adapter_speaks(self, device):
        try:
            data = device.adapter.recv(65536)
        except OSError:
            data = b""
        if not data:
            device.adapter.close()
            device.adapter = None
            self.end_connection(device)
            return False
        for at in range(0, len(data), device.longest()):
            self.tell_value(device, data[at:at + device.longest()])
        return True

    def tell_value(self, device, data):
        """Nobody hears what nobody has asked for."""
        speaker = device.speaker()
        if speaker:
            self.tell_changed(speaker.path, CHARACTERISTIC, {"Value": dbus.ByteArray(data)})

    def end_connection(self, device, tell=True):
        gone = device.objects()
        device.connected = device.resolved = False
        for one in device.characteristics:
            one.notifying = False
        if device.adapter:
            GLib.source_remove(device.watch)
            device.adapter.close()
            device.adapter = None
        for path, interfaces in gone.items():
            self.signal("/", MANAGER, "InterfacesRemoved", "oas", path, list(interfaces))
        if tell:
            self.tell_changed(device.path, DEVICE, {"ServicesResolved": False})
            self.tell_changed(device.path, DEVICE, {"Connected": False})

    def end_all_connections(self, tell=True):
        for device in self.le_devices():
            if device.connected:
                self.end_connection(device, tell)

    # --- what there is ---

    def le_devices(self):
        return [device for device in self.devices if isinstance(device, LeDevice)]

    def le_device(self, address):
        return next((device for device in self.le_devices() if device.address == address), None)

    def le_device_at(self, path):
        return next((device for device in self.le_devices() if device.path == path), None)

    def connectable(self, message):
        device = self.le_device_at(message.get_path())
        if not device:
            raise Refusal("DoesNotExist", "Does Not Exist")
        if not self.powered:
            raise Refusal("NotReady", "Resource Not Ready")
        return device

    def characteristic_of(self, message):
        """Only what belongs to a connected device is there."""
        for device in self.le_devices():
            for one in device.characteristics:
                if device.resolved and one.path == message.get_path():
                    return one
        raise Refusal("NotConnected", "Not Connected")
