"""Which sources are mutated, and which test programs of their room are to notice it. Add new ones here."""

# Room: test programs and the sources that they test.
ROOMS = {
    "publish": {
        "publish_test": [
            "addresses.cpp",
            "entry_date.cpp",
            "file_to_send.cpp",
            "folder_upload.cpp",
            "html_text.cpp",
            "index_page.cpp",
            "index_upload.cpp",
            "remote_data_entry.cpp",
            "remote_names.cpp",
            "remote_removal.cpp",
            "remote_survey.cpp",
        ],
    },
    "net": {
        "net_core_test": [
            "chunk_receiver.cpp",
            "chunk_sender.cpp",
            "ftp_listing.cpp",
            "ftp_pasv.cpp",
            "ftp_reply.cpp",
            "line_reader.cpp",
            "net_text.cpp",
        ],
        "net_files_test": ["cut_file.cpp", "data_source.cpp", "file_data_source.cpp"],
    },
    "job": {
        "job_text_test": ["bounded_text.cpp", "command_lines.cpp", "kml_links.cpp", "progress_record.cpp"],
        "job_core_test": [
            "batch_driver.cpp",
            "finishing_steps.cpp",
            "intermediates.cpp",
            "job_settings.cpp",
            "partial_files.cpp",
            "tool_paths.cpp",
        ],
        "job_gdal_test": ["input_list.cpp"],
    },
}


def sources_of(room):
    """Each source of a room, as "room/name", with the programs that test it, as in the build folder."""
    programs = {}
    for program, names in ROOMS[room].items():
        for name in names:
            programs.setdefault(f"{room}/{name}", []).append(f"src/{room}/{program}")
    return dict(sorted(programs.items()))
