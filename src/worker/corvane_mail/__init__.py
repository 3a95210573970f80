"""Readable text and attachments out of messages; the program is mail_worker.py beside this folder."""
