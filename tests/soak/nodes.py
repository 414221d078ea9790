"""The two ends of a connection, which every scenario has: a provider that is told what to do, and a client."""

import sys

from process import Process, require

PROGRAMS, Process.folder = sys.argv[1:3]
PROVIDER, CLIENT, TOOL = (f"{PROGRAMS}/{name}" for name in ("steered_provider", "soak_client", "tarn7"))
MEMORY = 384  # KiB that a process may grow: tables of peers fill up to their limit
TIME_TO_LIVE = 3  # seconds, of a subscription without configuration
ROUTE = {field: [{"member0": 0}] for field in ("destinations", "rangeOnRouteValues", "routeBasedResidualEnergyValues",
                                               "rwmStatus", "targetSocChargings")}


class Provider(Process):
    """energysystem/notifications with a number in the first record, and any number of empty records behind it."""

    def __init__(self, number, **options):
        super().__init__(PROVIDER, **options)
        self.set(number)  # for getters that come at once; followers get it once it is offered
        self.tell("offer 6005 1 4 3 4010")
        self.set(number)

    @staticmethod
    def setting(number, more_records=0):
        records = bytes.fromhex("000000062000") + number.to_bytes(4, "big") + bytes(4 * more_records)
        return f"set 4010 {len(records).to_bytes(4, 'big').hex()}{records.hex()}"

    def set(self, number, more_records=0):
        self.tell(self.setting(number, more_records))


class Client(Process):
    def __init__(self, **options):
        super().__init__(CLIENT, **options)

    def numbers(self, kind):
        return [int(line.split()[1]) for line in self.lines if line.startswith(kind)]

    def getters(self):
        """Ends the client: how many getters it started, got values and errors for, and had to give up at the end."""
        started, *ends = map(int, self.end().split()[1:])
        require(started == sum(ends), f"of {started} getters only {sum(ends)} ended")
        return (started, *ends)
