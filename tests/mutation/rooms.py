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
        "net_no_memory_test": ["file_data_source.cpp", "line_reader.cpp"],
        "net_ftp_client_test": [
            "ftp_client.cpp",
            "ftp_client_commands.cpp",
            "ftp_client_replies.cpp",
            "ftp_client_transfer.cpp",
        ],
        "net_ftp_data_test": ["ftp_client_data.cpp", "ftp_client_list.cpp", "ftp_client_transfer.cpp"],
        "net_ftp_trouble_test": [
            "ftp_client.cpp",
            "ftp_client_data.cpp",
            "ftp_client_list.cpp",
            "ftp_client_replies.cpp",
            "ftp_client_transfer.cpp",
        ],
    },
    "job": {
        "job_text_test": [
            "bounded_text.cpp",
            "command_lines.cpp",
            "kml_links.cpp",
            "map_outcome.cpp",
            "progress_record.cpp",
            "tiler_log.cpp",
            "tool_run.cpp",
        ],
        "job_core_test": [
            "batch_driver.cpp",
            "batch_driver_finish.cpp",
            "guarded_host.cpp",
            "intermediates.cpp",
            "job_settings.cpp",
            "map_audit.cpp",
            "partial_files.cpp",
            "tiler_log_file.cpp",
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
