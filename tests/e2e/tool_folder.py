"""Fixture of tests that change the tool folder: a copy of the program of their own, and what fake tools in it
were called with."""

from batch_support import BatchTest, windows_path
from rasters import OWN_ZONE, make_raster
from results import Job, ResultChecks


class ToolFolderTest(BatchTest, ResultChecks):
    maps = 1

    def setUp(self):
        super().setUp()
        self.stage = self.private_stage()
        self.own = make_raster(self.folder / "own.tif", OWN_ZONE)
        self.job = Job(self.folder / "out", self.maps)
        self._call_list = self.folder / "calls"

    def orthophotos(self):
        """What is tiled unless a test says otherwise."""
        return (self.own,)

    def run_job(self, *orthophotos, **environment):
        environment = {"FAKE_TOOL_CALLS": windows_path(self._call_list), **environment}
        orthophotos = orthophotos or self.orthophotos()
        return self.batch(
            "--target", self.job.target, *orthophotos, stage=self.stage, environment=environment
        )

    def calls(self):
        """The calls of the fake tools, a list of fields each."""
        if not self._call_list.exists():
            return []
        return [line.split("\t") for line in self._call_list.read_text("cp1252").splitlines()]
